#pragma once

#include <array>
#include <charconv>
#include <concepts>
#include <cstddef>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>

#include <cjson/cJSON.h>

namespace xpon::api_service {

/// Writes JSON text, laid out as cJSON_Print() does, to the byte: clients compare texts. One pass, no tree: values go
/// straight from records to the text, and trees that other libraries made are printed between them.
///
/// Values follow each other as they stand in the text: in an object key() stands before each. Nothing checks that.
class JsonWriter {
public:
    /// How far the text can be taken back.
    struct Mark {
        std::size_t size;
        bool is_first;
    };

    /// `depth` is the number of objects and arrays around the text, which its indentation begins with.
    explicit JsonWriter(std::size_t depth = 0) : depth_(depth) {}

    void begin_object();
    void end_object();
    void begin_array();
    void end_array();
    void key(std::string_view key);

    void text(std::string_view value);
    void boolean(bool value);
    /// A number without a fraction; all its digits are written.
    template <std::integral Integer>
    void integer(Integer value) {
        begin_value();
        std::array<char, std::numeric_limits<Integer>::digits10 + 2> digits; // NOLINT(*-member-init): filled below
        append({digits.data(), std::to_chars(digits.begin(), digits.end(), value).ptr});
    }
    /// As cJSON writes it: no more digits than make it the same number within the precision of its type.
    void number(double value);
    /// JSON text that has been made at this depth. A long one keeps its place in memory, what is written before joins
    /// it.
    void raw(std::string json);
    /// False for a tree that cJSON does not print either; what has been written is of no use then.
    [[nodiscard]] bool tree(const cJSON* tree);

    [[nodiscard]] Mark mark() const {
        return {used_, is_first_};
    }
    /// Forgets what was written since; objects and arrays begun since must have ended.
    void take_back(const Mark& mark) {
        used_ = mark.size;
        is_first_ = mark.is_first;
    }

    /// What has been written; the writer is of no use then.
    std::string take() &&;

    /// Keeps the memory of a text that nobody needs any more for the next long one of this thread, unless it is more
    /// than is worth keeping: the kernel takes longer to bring pages than the writer to fill them.
    static void reuse(std::string text);

private:
    /// What stands before a value in an array; in an object key() has written it.
    void begin_value();
    void begin_line(std::size_t depth);
    void append(std::string_view piece);
    /// Punctuation: a move or two instead of a call.
    template <std::size_t size>
    void append(const char (&punctuation)[size]) {
        std::memcpy(room(size - 1), punctuation, size - 1);
        used_ += size - 1;
    }
    void append_quoted(std::string_view value);
    void append_escaped(std::string_view piece);
    void append_number(const cJSON& number);
    bool append_tree(const cJSON& tree);
    bool append_array(const cJSON& array);
    bool append_object(const cJSON& object);
    /// Room for so many bytes behind what is written.
    char* room(std::size_t size) {
        if (text_.size() - used_ < size) {
            grow(size);
        }
        return text_.data() + used_;
    }
    void grow(std::size_t size);

    std::string text_; ///< longer than what is written
    std::size_t used_ = 0;
    std::size_t depth_;
    bool is_first_ = true; ///< of the object or array that has been begun
    bool has_key_ = false; ///< a key waits for its value
};

} // namespace xpon::api_service
