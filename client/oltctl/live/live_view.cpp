#include "client/oltctl/live/live_view.hpp"

#include "client/oltctl/failure.hpp"

#include <algorithm>
#include <iterator>

#include <fmt/format.h>

namespace xpon::oltctl {
namespace {

using Clock = std::chrono::steady_clock;

/// What is seen of a view: from which line on.
class Window {
public:
    Window(Screen& screen, const LiveView& view) : screen_(screen), view_(view) {}

    void draw(const std::string& trouble) {
        const auto columns = screen_.columns();
        auto lines = view_.head(columns);
        auto body = view_.body(columns);
        const auto fixed = lines.size() + 1;
        height_ = screen_.rows() > fixed ? screen_.rows() - fixed : 1;
        last_ = body.size() > height_ ? body.size() - height_ : 0;
        first_ = std::min(first_, last_);
        const auto end = std::min(body.size(), first_ + height_);
        std::move(body.begin() + static_cast<std::ptrdiff_t>(first_), body.begin() + static_cast<std::ptrdiff_t>(end),
                  std::back_inserter(lines));
        lines.resize(screen_.rows() - 1);
        lines.push_back(!trouble.empty() ? Line{{trouble, Style::bad}}
                        : last_ == 0     ? Line{{"q quit", Style::faint}}
                                     : Line{{fmt::format("q quit  arrows, page keys: lines {} to {} of {}", first_ + 1,
                                                         end, body.size()),
                                             Style::faint}});
        screen_.show(lines);
    }

    void scroll(Screen::Key key) {
        switch (key) {
        case Screen::Key::up:
            first_ -= std::min<std::size_t>(first_, 1);
            break;
        case Screen::Key::down:
            first_ += 1;
            break;
        case Screen::Key::page_up:
            first_ -= std::min(first_, height_);
            break;
        case Screen::Key::page_down:
            first_ += height_;
            break;
        case Screen::Key::first:
            first_ = 0;
            break;
        case Screen::Key::last:
            first_ = last_;
            break;
        default:
            break;
        }
        first_ = std::min(first_, last_);
    }

private:
    Screen& screen_;
    const LiveView& view_;
    std::size_t first_ = 0;
    std::size_t last_ = 0;
    std::size_t height_ = 1;
};

/// Why there is nothing new; empty when there is.
std::string try_to_sample(Service& service, LiveView& view) {
    try {
        view.sample(service);
        return "";
    } catch (const Failure& failure) {
        if (failure.status() != ExitStatus::no_connection) {
            throw;
        }
        return std::string(failure.what()) + " Trying again.";
    }
}

} // namespace

double seconds_now() {
    return std::chrono::duration<double>(Clock::now().time_since_epoch()).count();
}

void show_live(Service& service, LiveView& view, const Pace& pace) {
    view.sample(service); // what is refused at once needs no screen
    Screen screen;
    service.before_asking([&screen] { screen.leave(); });
    Window window(screen, view);
    std::string trouble;
    for (unsigned samples = 1;; ++samples) {
        const auto next =
            Clock::now() + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(pace.interval_s));
        window.draw(trouble);
        while (Clock::now() < next) {
            const auto key = screen.wait(std::chrono::ceil<std::chrono::milliseconds>(next - Clock::now()));
            if (key == Screen::Key::quit) {
                return;
            }
            if (key != Screen::Key::none) {
                window.scroll(key);
                window.draw(trouble);
            }
        }
        if (samples == pace.count) {
            return;
        }
        trouble = try_to_sample(service, view);
    }
}

} // namespace xpon::oltctl
