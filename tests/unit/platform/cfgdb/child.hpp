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
        int ends[2];
        EXPECT_EQ(pipe(ends), 0);
        reading_end_ = ends[0];
        process_ = fork();
        if (process_ == 0) {
            work([end = ends[1]] { EXPECT_EQ(write(end, "x", 1), 1); });
            _exit(0);
        }
        close(ends[1]);
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;
    ~Child() {
        kill(process_, SIGKILL);
        wait_for_end();
        close(reading_end_);
    }

    void wait_for_report() const {
        char byte = 0;
        EXPECT_EQ(read(reading_end_, &byte, 1), 1);
    }
    void wait_for_end() const {
        waitpid(process_, nullptr, 0);
    }
    void kill_hard() const {
        kill(process_, SIGKILL);
        wait_for_end();
    }

private:
    int reading_end_ = -1;
    pid_t process_ = -1;
};

} // namespace xpon::test
