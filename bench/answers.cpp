#include "bench/answers.hpp"

#include <stdexcept>
#include <utility>

namespace xpon::bench {
namespace {

using core::JsonTree;

const cJSON* member(const JsonTree& tree, const char* key) {
    return cJSON_GetObjectItemCaseSensitive(tree.get(), key);
}

/// Made value by value, as a program makes it that has the values from elsewhere.
JsonTree build(const cJSON* like) {
    if (cJSON_IsString(like) != 0) {
        return JsonTree(cJSON_CreateString(like->valuestring));
    }
    if (cJSON_IsNumber(like) != 0) {
        return JsonTree(cJSON_CreateNumber(like->valuedouble));
    }
    if (cJSON_IsBool(like) != 0) {
        return JsonTree(cJSON_CreateBool(cJSON_IsTrue(like)));
    }
    const bool is_object = cJSON_IsObject(like) != 0;
    JsonTree tree(is_object ? cJSON_CreateObject() : cJSON_CreateArray());
    const cJSON* item = nullptr;
    cJSON_ArrayForEach(item, like) {
        if (is_object) {
            cJSON_AddItemToObject(tree.get(), item->string, build(item).release());
        } else {
            cJSON_AddItemToArray(tree.get(), build(item).release());
        }
    }
    return tree;
}

} // namespace

Answers::Answers(std::string_view kind, std::string document)
    : answer_(find(kind)), document_(std::move(document)), tree_(cJSON_Parse(document_.c_str())) {
    const bool needs_document = answer_ != &Answers::echo && answer_ != &Answers::parsed_and_printed;
    if (needs_document && member(tree_, "session_id") == nullptr) {
        throw std::invalid_argument("the document is no answer");
    }
}

Answers::Answer Answers::find(std::string_view kind) {
    constexpr std::pair<std::string_view, Answer> kinds[] = {{"echo", &Answers::echo},
                                                             {"json", &Answers::parsed_and_printed},
                                                             {"document", &Answers::built},
                                                             {"copy", &Answers::built_and_copied},
                                                             {"text", &Answers::text}};
    for (const auto& [name, answer] : kinds) {
        if (name == kind) {
            return answer;
        }
    }
    throw std::invalid_argument("unknown kind of answers");
}

std::string_view Answers::echo(const std::string& request) {
    return request;
}

std::string_view Answers::parsed_and_printed(const std::string& request) {
    const JsonTree tree(cJSON_Parse(request.c_str()));
    const JsonTree answer(cJSON_CreateObject());
    cJSON_AddTrueToObject(answer.get(), "success");
    cJSON_AddStringToObject(answer.get(), "session_id", "");
    cJSON_AddItemToObject(answer.get(), "data", cJSON_DetachItemFromObjectCaseSensitive(tree.get(), "data"));
    return print(answer.get());
}

JsonTree Answers::envelope() const {
    JsonTree answer(cJSON_CreateObject());
    cJSON_AddTrueToObject(answer.get(), "success");
    cJSON_AddStringToObject(answer.get(), "session_id", member(tree_, "session_id")->valuestring);
    return answer;
}

std::string_view Answers::built(const std::string& request) {
    const JsonTree tree(cJSON_Parse(request.c_str()));
    const JsonTree answer = envelope();
    cJSON_AddItemToObject(answer.get(), "data", build(member(tree_, "data")).release());
    return print(answer.get());
}

std::string_view Answers::built_and_copied(const std::string& request) {
    const JsonTree tree(cJSON_Parse(request.c_str()));
    const JsonTree data = build(member(tree_, "data"));
    const JsonTree answer = envelope();
    cJSON_AddItemToObject(answer.get(), "data", cJSON_Duplicate(data.get(), 1));
    return print(answer.get());
}

std::string_view Answers::text(const std::string&) {
    return document_;
}

std::string_view Answers::print(const cJSON* tree) {
    printed_.reset(cJSON_Print(tree));
    return printed_.get();
}

} // namespace xpon::bench
