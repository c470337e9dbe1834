#include "client/oltctl/commands/context.hpp"
#include "client/oltctl/commands/syntax.hpp"
#include "client/oltctl/configuration/records.hpp"
#include "client/oltctl/editing/editor.hpp"
#include "client/oltctl/editing/record_text.hpp"
#include "client/oltctl/failure.hpp"
#include "client/oltctl/output/terminal.hpp"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>

namespace xpon::oltctl {
namespace {

struct Words {
    std::string path;
    std::vector<std::string> indices;
    std::string file; ///< with a text of before
};

/// One editing of records of an element, from the first reading to the last writing.
class Editing {
public:
    Editing(Context& context, const Words& words) : context_(context), words_(words) {
        const auto* const element = find_element(words.path);
        if (element == nullptr || words.indices.size() != element->depth()) {
            throw Failure(ExitStatus::usage, element == nullptr
                                                 ? fmt::format("'{}' is no element of the configuration.", words.path)
                                                 : fmt::format("{} has {} indices.", words.path, element->depth()));
        }
        read();
    }

    void run() {
        const auto notation = context_.as_json ? Notation::json : Notation::yaml;
        auto text = words_.file.empty() ? text_of(words_.path, records_, notation) : std::string();
        const auto file = words_.file.empty()
                              ? EditedFile(words_.path, context_.as_json ? ".json" : ".yaml", introduction() + text)
                              : EditedFile(words_.file);
        try {
            while (!attempt(file)) {
            }
        } catch (const Failure& failure) {
            throw Failure(failure.status(), fmt::format("{}\nWhat you wrote is kept: oltctl edit {}{}{} --file {}",
                                                        failure.what(), words_.path, words_.indices.empty() ? "" : " ",
                                                        fmt::join(words_.indices, " "), file.path().string()));
        }
        file.discard();
        print(written_ == 0 ? "Nothing differs.\n"
                            : fmt::format("{} records changed; `oltctl commit` puts them into force.\n", written_));
    }

private:
    [[nodiscard]] std::string introduction() const {
        return fmt::format("# {} {} of the candidate configuration.\n# What you save is written there; a file that is "
                           "left as it is changes nothing.\n",
                           words_.path, fmt::join(words_.indices, " "));
    }

    void read() {
        auto answer = context_.service().ask(
            {.path = words_.path, .method = "get", .indices = words_.indices, .config_type = "candidate"});
        if (words_.indices.empty()) {
            records_.emplace("", std::move(answer.data));
            return;
        }
        const auto indices = indices_of(words_.indices);
        for (const auto& index : indices) {
            if (answer.data && answer.data->child != nullptr) {
                records_.emplace(indices.size() == 1 ? "" : oltctl::text_of(index),
                                 core::JsonTree(cJSON_DetachItemViaPointer(answer.data.get(), answer.data->child)));
            }
        }
    }

    /// Has the user edit, and writes. False when that has to be done again, with remarks in the file.
    bool attempt(const EditedFile& file) {
        const auto before = file.read();
        file.edit();
        const auto text = file.read();
        if (text == before && !is_first_) {
            throw Failure(ExitStatus::refused, "You left it as it was.");
        }
        const bool is_untouched = text == before && words_.file.empty();
        is_first_ = false;
        if (is_untouched) {
            return true;
        }
        const auto plain = without_remarks(text);
        try {
            const auto remarks = write(records_of(words_.path, plain, records_));
            if (!remarks.empty()) {
                file.write(with_remarks(plain, remarks));
            }
            return remarks.empty();
        } catch (const TextFault& fault) {
            file.write(with_remark(plain, fault));
            return false;
        }
    }

    /// Writes what differs; what the service has to say against it.
    std::vector<Remark> write(RecordTrees edited) {
        std::vector<Remark> remarks;
        for (auto& [index, record] : edited) {
            if (is_equal(record.get(), records_.at(index).get())) {
                continue;
            }
            client::Request request{
                .path = words_.path, .method = "set", .indices = lists_of_record(index), .config_type = "candidate"};
            request.data = std::move(record);
            const auto answer = context_.service().answer_to(request);
            for (const auto& error : answer.errors) {
                remarks.push_back({.index = index, .field = error.path, .text = error.message()});
            }
            if (answer.is_good()) {
                records_[index] = std::move(request.data);
                ++written_;
            } else if (answer.errors.empty()) {
                remarks.push_back({.index = index, .field = "", .text = "The service refused this."});
            }
        }
        return remarks;
    }

    [[nodiscard]] std::vector<std::string> lists_of_record(const std::string& index) const {
        if (index.empty()) {
            return words_.indices;
        }
        std::vector<std::string> lists;
        for (std::size_t begin = 0; begin <= index.size();) {
            const auto slash = std::min(index.find('/', begin), index.size());
            lists.push_back(index.substr(begin, slash - begin));
            begin = slash + 1;
        }
        return lists;
    }

    Context& context_;
    const Words& words_;
    RecordTrees records_; ///< as they are in the candidate
    std::size_t written_ = 0;
    bool is_first_ = true;
};

} // namespace

void add_editor_command(CommandSyntax program, Context& context) {
    const auto editor = program.add_command(
        "edit", "Edit records of the candidate in $EDITOR, as YAML or with --json as JSON, with what each field takes");
    const auto words = std::make_shared<Words>();
    editor.add_option("PATH", words->path, "such as configuration.CommonGCfg.system.ntp").required().type_name("");
    editor.add_option("INDICES", words->indices, "such as 1 1-8").type_name("");
    editor.add_option("--file", words->file, "go on with a text that was kept").existing_file();
    editor.does(context, [&context, words] { Editing(context, *words).run(); });
}

} // namespace xpon::oltctl
