#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <string_view>

namespace xpon::docs {

/// What the headers of the records say of the records and their members: the comments are written beside the
/// members alone, the field tables know none.
class RecordComments {
public:
    /// Reads all headers of a folder. Throws std::runtime_error when there are none.
    explicit RecordComments(const std::filesystem::path& folder);

    /// @{ Empty without a comment.
    [[nodiscard]] std::string of(std::string_view record) const;
    /// A member without a comment has that of its type.
    [[nodiscard]] std::string of(std::string_view record, std::string_view member) const;
    /// @}

private:
    void read(const std::filesystem::path& header);

    std::map<std::string, std::string> texts_; ///< by "Record" and "Record.member"
};

} // namespace xpon::docs
