#include "simulator/plants/described_value.hpp"

#include <algorithm>
#include <cmath>
#include <set>
#include <utility>

#include <fmt/format.h>

namespace xpon::simulator {

void DescribedValue::check_members(std::initializer_list<std::string_view> known) const {
    if (cJSON_IsObject(value_) == 0) {
        fail("must be an object");
    }
    std::set<std::string_view> seen;
    for (const auto& member : elements()) {
        if (std::ranges::find(known, member.name()) == known.end()) {
            member.fail(fmt::format("is unknown; here may stand {}", fmt::join(known, ", ")));
        }
        if (!seen.insert(member.name()).second) {
            member.fail("stands here twice");
        }
    }
}

std::optional<DescribedValue> DescribedValue::find(const char* name) const {
    const auto* const member = cJSON_GetObjectItemCaseSensitive(value_, name);
    return member == nullptr ? std::nullopt
                             : std::optional(DescribedValue(member, path_.empty() ? name : path_ + "." + name));
}

DescribedValue DescribedValue::at(const char* name) const {
    auto member = find(name);
    if (!member) {
        fail(fmt::format("needs a member {}", name));
    }
    return *std::move(member);
}

std::vector<DescribedValue> DescribedValue::elements() const {
    const bool is_object = cJSON_IsObject(value_) != 0;
    if (!is_object && cJSON_IsArray(value_) == 0) {
        fail("must be a list");
    }
    std::vector<DescribedValue> elements;
    for (const auto* element = value_->child; element != nullptr; element = element->next) {
        const auto step = is_object ? fmt::format("{}{}", path_.empty() ? "" : ".", element->string)
                                    : fmt::format("[{}]", elements.size());
        elements.emplace_back(element, path_ + step);
    }
    return elements;
}

std::string_view DescribedValue::name() const {
    return value_->string;
}

std::string DescribedValue::text(std::size_t longest) const {
    const std::string_view text = cJSON_IsString(value_) != 0 ? value_->valuestring : "";
    const bool is_printable = std::ranges::all_of(text, [](char letter) { return letter >= ' ' && letter <= '~'; });
    if (cJSON_IsString(value_) == 0 || text.size() > longest || !is_printable) {
        fail(fmt::format("must be a text of at most {} printable ASCII characters", longest));
    }
    return std::string(text);
}

double DescribedValue::number(double least, double most) const {
    // Written so that a number that is none (NaN) is refused as well.
    if (cJSON_IsNumber(value_) == 0 || !(value_->valuedouble >= least && value_->valuedouble <= most)) {
        fail(fmt::format("must be a number from {} to {}", least, most));
    }
    return value_->valuedouble;
}

unsigned DescribedValue::whole(unsigned least, unsigned most) const {
    if (cJSON_IsNumber(value_) == 0 || !(value_->valuedouble >= least && value_->valuedouble <= most) ||
        std::trunc(value_->valuedouble) != value_->valuedouble) {
        fail(fmt::format("must be a whole number from {} to {}", least, most));
    }
    return static_cast<unsigned>(value_->valuedouble);
}

bool DescribedValue::flag() const {
    if (cJSON_IsBool(value_) == 0) {
        fail("must be true or false");
    }
    return cJSON_IsTrue(value_) != 0;
}

void DescribedValue::fail(std::string_view complaint) const {
    throw DescriptionError(value_, fmt::format("{} {}", path_.empty() ? "the description" : path_, complaint));
}

} // namespace xpon::simulator
