#pragma once

#include "xpon/core/json_tree.hpp"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace xpon::oltctl {

/// Records of one element as a text that people edit: YAML, of which JSON is a part.
/// Several records stand below the index of each ("3/17"); a single one stands alone, with the index "".
using RecordTrees = std::map<std::string, core::JsonTree>;

enum class Notation { yaml, json };
/// Each field below a comment with what is allowed there, its default and its meaning.
std::string text_of(std::string_view element, const RecordTrees& records, Notation notation);

/// Something that is wrong with the text.
struct Remark {
    std::string index; ///< of the record
    std::string field; ///< key path, "servers.0.address"; empty for the whole record
    std::string text;
};
/// The text with each remark in a line of its own above the field that it is about, or above what is left of it.
std::string with_remarks(const std::string& text, const std::vector<Remark>& remarks);
/// The text without them.
std::string without_remarks(const std::string& text);

/// The records of an edited text, under the same indices as those of `before`. Numbers and texts are told apart by what
/// the field takes, so that texts of digits need no quotes, and serials may be written SIMUA0030011. Throws TextFault
/// for a text that cannot be read, or that has other records.
RecordTrees records_of(std::string_view element, const std::string& text, const RecordTrees& before);

/// What stands against a text, and in which line, from 0.
struct TextFault {
    std::size_t line;
    std::string text;
};
std::string with_remark(const std::string& text, const TextFault& fault);

} // namespace xpon::oltctl
