#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <cjson/cJSON.h>

namespace xpon::simulator {

/// A value of a description that is not as it must be; the text begins with its path, "pon_ports[1].split".
class DescriptionError : public std::runtime_error {
public:
    DescriptionError(const cJSON* value, const std::string& text) : std::runtime_error(text), value_(value) {}

    [[nodiscard]] const cJSON* value() const {
        return value_;
    }

private:
    const cJSON* value_;
};

/// A value of a description in JSON, with its path. Lives no longer than the tree. All calls throw DescriptionError for
/// a value of another type or outside the limits, which are allowed themselves.
class DescribedValue {
public:
    explicit DescribedValue(const cJSON* value, std::string path = "") : value_(value), path_(std::move(path)) {}

    /// This must be an object that has no other members than those in `known`, and none twice.
    void check_members(std::initializer_list<std::string_view> known) const;
    [[nodiscard]] std::optional<DescribedValue> find(const char* name) const;
    /// The member must be there.
    [[nodiscard]] DescribedValue at(const char* name) const;
    /// Of a list, or the members of an object.
    [[nodiscard]] std::vector<DescribedValue> elements() const;
    /// Of a member.
    [[nodiscard]] std::string_view name() const;

    [[nodiscard]] std::string text(std::size_t longest = 63) const;
    [[nodiscard]] double number(double least, double most) const;
    [[nodiscard]] unsigned whole(unsigned least, unsigned most) const;
    [[nodiscard]] bool flag() const;

    [[noreturn]] void fail(std::string_view complaint) const;

private:
    const cJSON* value_;
    std::string path_;
};

} // namespace xpon::simulator
