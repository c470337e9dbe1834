#pragma once

#include <csignal>

#include <sys/wait.h>

#include <gtest/gtest.h>
#include <unistd.h>

namespace xpon::test {

/// A child process that runs `work`, which says with `report` how far it is; killed with the object.
class Child {
public:
    template <class Work>
    explicit Child(const Work& work) {
        EXPECT_EQ(pipe(ends_), 0);
        process_ = fork();
        if (process_ == 0) {
            work([this] { EXPECT_EQ(write(ends_[1], "x", 1), 1); });
            _exit(0);
        }
        close(ends_[1]);
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;
    ~Child() {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
        close(ends_[0]);
    }

    void wait_for_report() const {
        char byte = 0;
        EXPECT_EQ(read(ends_[0], &byte, 1), 1);
    }

private:
    int ends_[2]{};
    pid_t process_ = -1;
};

} // namespace xpon::test
