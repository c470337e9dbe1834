#include "client/oltctl/session/password.hpp"

#include "client/oltctl/failure.hpp"
#include "client/oltctl/session/private_file.hpp"
#include "xpon/core/unique_fd.hpp"

#include <cerrno>

#include <fcntl.h>
#include <fmt/format.h>
#include <termios.h>
#include <unistd.h>

namespace xpon::oltctl {
namespace {

constexpr char interrupt_key = 3; // Ctrl-C

/// Read byte by byte: what stands behind the line is not ours.
std::string read_line(int descriptor) {
    std::string line;
    for (char byte = 0;;) {
        const auto count = read(descriptor, &byte, 1);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            throw Failure(ExitStatus::usage, fmt::format("File descriptor {} cannot be read.", descriptor));
        }
        if (count == 0 || byte == '\n') {
            return line;
        }
        line.push_back(byte);
    }
}

/// The terminal without echo. Ctrl-C is an end of line like others, so that it cannot leave the terminal so.
class SilentTerminal {
public:
    explicit SilentTerminal(int terminal) : terminal_(terminal) {
        tcgetattr(terminal_, &settings_);
        auto silent = settings_;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO | ISIG);
        silent.c_cc[VEOL] = interrupt_key;
        tcsetattr(terminal_, TCSAFLUSH, &silent);
    }
    SilentTerminal(const SilentTerminal&) = delete;
    SilentTerminal& operator=(const SilentTerminal&) = delete;
    ~SilentTerminal() {
        tcsetattr(terminal_, TCSAFLUSH, &settings_);
    }

    [[nodiscard]] std::string read_answer() const {
        std::string line;
        char byte = 0;
        while (read(terminal_, &byte, 1) == 1 && byte != '\n') {
            if (byte == interrupt_key) {
                throw Failure(ExitStatus::refused, "Interrupted.");
            }
            line.push_back(byte);
        }
        return line;
    }

private:
    int terminal_;
    termios settings_{};
};

std::string first_line(const std::string& text) {
    return text.substr(0, text.find('\n'));
}

} // namespace

std::string read_password(const PasswordSource& source, const std::string& question) {
    if (source.descriptor) {
        return read_line(*source.descriptor);
    }
    if (!source.file.empty()) {
        return first_line(read_private_file(source.file));
    }
    const core::UniqueFd terminal(open("/dev/tty", O_RDWR | O_CLOEXEC));
    if (!terminal) {
        throw Failure(ExitStatus::usage,
                      "There is no terminal to ask for the password at. Give it with --password-fd FD or "
                      "--password-file FILE (of mode 0600).");
    }
    const auto say = [&](const std::string& text) {
        return write(terminal.get(), text.data(), text.size()) == static_cast<ssize_t>(text.size());
    };
    const SilentTerminal silent(terminal.get());
    if (!say(question)) {
        throw Failure(ExitStatus::usage, "The terminal cannot be written.");
    }
    auto password = silent.read_answer();
    say("\n");
    return password;
}

} // namespace xpon::oltctl
