#include "client/oltctl/confirmation/restoration.hpp"

#include "client/oltctl/configuration/document.hpp"
#include "client/oltctl/failure.hpp"

namespace xpon::oltctl {

void Restoration::attempt(Service& service) {
    ConfigurationAccess access(service);
    const auto edited = differing_records(service, access);
    edits_.push_back(document_of(edited, &DifferingRecords::candidate));
    const auto return_edits = [&] {
        for (const auto& edit : edits_) {
            import_document(access, edit);
        }
        edits_.clear();
    };
    try {
        import_document(access, document_of(edited, &DifferingRecords::running));
        if (import_document(access, commit_.before).changed != 0) {
            service.ask({.path = "command.commit", .method = "command"});
        }
    } catch (const Failure& failure) {
        if (failure.status() == ExitStatus::refused) { // there will be further attempts, and people go on editing
            return_edits();
        }
        throw;
    }
    return_edits();
}

void Restoration::attempt() {
    try {
        Service service(commit_.session.port, patience_);
        service.use(commit_.session);
        attempt(service);
    } catch (const Failure& failure) {
        if (failure.status() != ExitStatus::no_session) {
            throw;
        }
        // The daemon was started anew; a session of whoever has logged in since will do.
        Service service(commit_.session.port, patience_);
        attempt(service);
    }
}

} // namespace xpon::oltctl
