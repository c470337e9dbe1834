#include "client/oltctl/commands/context.hpp"

#include "client/oltctl/confirmation/guard.hpp"
#include "client/oltctl/output/terminal.hpp"
#include "client/oltctl/output/tree.hpp"

#include <iostream>
#include <new>
#include <string>
#include <vector>

namespace xpon::oltctl {
namespace {

std::string json_text(const cJSON* value) {
    const core::JsonText text(value == nullptr ? nullptr : cJSON_Print(value));
    if (!text && value != nullptr) {
        throw std::bad_alloc();
    }
    return std::string(text ? text.get() : "null") + "\n";
}

} // namespace

Service& Context::service() {
    if (!service_) {
        const auto patience = std::chrono::seconds(patience_s);
        if (const auto news = news_of_commit(port, patience); !news.empty()) {
            std::cerr << news << "\n";
        }
        service_.emplace(port, patience);
    }
    return *service_;
}

void Context::show_rows(const cJSON* array, std::span<const Column> columns) const {
    if (as_json) {
        print(json_text(array));
        return;
    }
    std::vector<const cJSON*> rows;
    for (const auto* row = array == nullptr ? nullptr : array->child; row != nullptr; row = row->next) {
        rows.push_back(row);
    }
    print(table_of(rows, columns, output_width()));
}

void Context::show_object(const cJSON* object) const {
    print(as_json ? json_text(object) : object == nullptr ? "" : tree_of(object));
}

void Context::confirm(const std::string& question) const {
    if (!yes) {
        ask_to_go_on(question);
    }
}

} // namespace xpon::oltctl
