#pragma once

#include "client/oltctl/configuration/records.hpp"
#include "client/oltctl/provisioning/subscriber_list.hpp"

#include <string>
#include <unordered_map>

namespace xpon::oltctl {

/// Configures new ONTs in the candidate. What is configured there already is read once, when it is made.
class Provisioner {
public:
    explicit Provisioner(Service& service);

    /// Configures the ONT and returns its place. Failure for a serial or a place that is taken, for a template that
    /// does not exist, and for what the service refuses.
    Index provision(const Subscriber& subscriber);
    /// Gives all places that were filled their records of before again.
    void undo();

private:
    unsigned template_number(const std::string& name) const;
    Index place_for(const Subscriber& subscriber, const std::string& serial) const;

    ConfigurationAccess access_;
    ConfigurationAccess::Read onts_;
    ConfigurationAccess::Read templates_;
    std::unordered_map<std::string, Index> places_; ///< by serial, those that were filled here too
    Records before_;                                ///< of the places that were filled here
};

} // namespace xpon::oltctl
