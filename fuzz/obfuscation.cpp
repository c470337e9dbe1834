// Both directions of the obfuscation, any text. Buffers are of the size that the interface asks for, to the byte, so
// that the sanitizer sees one that is overrun. What was obfuscated comes back; what is accepted has one form.

#include "xpon/obfuscation/obfuscation.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

namespace {

std::unique_ptr<char[]> exact_copy(const std::string& text) {
    auto copy = std::make_unique<char[]>(text.size() + 1);
    std::memcpy(copy.get(), text.c_str(), text.size() + 1);
    return copy;
}

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

/// False when it is refused.
bool obfuscate(const std::string& text, std::string& form) {
    const auto input = exact_copy(text);
    const auto size = calculate_valid_size(input.get());
    const auto output = std::make_unique<char[]>(size);
    if (text_obfuscate(input.get(), output.get()) != 0) {
        return false;
    }
    form = output.get();
    require(form.size() + 1 == size);
    return true;
}

bool deobfuscate(const std::string& form, std::string& text) {
    const auto input = exact_copy(form);
    const auto output = std::make_unique<char[]>(std::max<std::size_t>(form.size(), 1));
    if (text_deobfuscate(input.get(), output.get()) != 0) {
        return false;
    }
    text = output.get();
    return true;
}

void check_form(const std::string& form) {
    std::string text;
    std::string again;
    if (deobfuscate(form, text) && !form.empty()) {
        require(obfuscate(text, again) && again == form);
    }
}

} // namespace

// NOLINTNEXTLINE(readability-identifier-naming): the name is libFuzzer's
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), strnlen(reinterpret_cast<const char*>(data), size));
    check_form(text);
    check_form("$ob1$" + text);

    std::string form;
    constexpr std::size_t longest = 1024;
    const bool is_accepted = obfuscate(text, form);
    require(is_accepted == (text.size() <= longest));
    std::string back;
    if (is_accepted) {
        require(deobfuscate(form, back) && back == text);
        // One character damaged: refused, or another text in its one form.
        form.at(text.size() % form.size()) ^= 1;
        check_form(form);
    }
    return 0;
}
