// Loops over what ends a program, or spoils its files, at any moment. Few rounds here; scripts/torture makes many.

#include "cfgdb/checksum.hpp"
#include "cfgdb/durable_file.hpp"
#include "tests/processes/child.hpp"
#include "tests/processes/rounds.hpp"
#include "tests/support/eventually.hpp"
#include "tests/support/recording_logger.hpp"
#include "tests/support/temporary_olt_root.hpp"
#include "tests/unit/platform/cfgdb/edits.hpp"
#include "tests/unit/platform/cfgdb/other_release.hpp"
#include "xpon/peer_side/configuration_file.hpp"
#include "xpon/peer_side/database_log.hpp"

#include <fstream>
#include <optional>
#include <random>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <poll.h>

namespace xpon::cfgdb {
namespace {

using testing::Contains;
using testing::HasSubstr;

constexpr const char* save_path = "/configuration/save-config";
constexpr unsigned onts = 512;

std::string ont_json(unsigned nth, const std::string& description) {
    return fmt::format(R"({{"serial":[1,1,1,1,0,0,{},{},0,0],"description":"{}","ont_template":1}})", nth / 256,
                       nth % 256, description);
}

class Torture : public testing::Test {
protected:
    Torture() {
        set_database_log(logger_);
        open();
        run("saved");
        EXPECT_EQ(save_running_configuration(client_->handle(), save_path), 0);
        run("runs");
    }
    ~Torture() override {
        set_database_log(nullptr);
    }

    void open() {
        logger_->clear();
        client_.emplace("TEST");
    }

    /// All ONTs get the description.
    void run(const std::string& description) {
        std::vector<test::Edit> edits;
        for (unsigned nth = 0; nth < onts; ++nth) {
            edits.push_back(test::edit_ont(nth / 256 + 1, nth % 256 + 1, ont_json(nth, description)));
        }
        test::apply(*client_, edits);
        ASSERT_EQ(test::commit(*client_), "");
    }

    /// The description that all ONTs have.
    std::string description() {
        const std::string first = test::stored<PonOnt>(*client_, Store::running).description;
        for (unsigned nth = 0; nth < onts; ++nth) {
            const auto ont = test::stored<PonOnt>(*client_, Store::running, {static_cast<std::uint16_t>(nth)});
            if (first != ont.description || (ont.serial & 0xFFFFU) != nth) {
                return fmt::format("another one than \"{}\" at {}", first, nth);
            }
        }
        return first;
    }

    [[nodiscard]] std::filesystem::path database_folder() const {
        return root_.path() / "run/cfgdb";
    }

    /// A killed program's child may make a last file meanwhile.
    void remove_database() const {
        std::error_code fault;
        ASSERT_TRUE(test::eventually([&] { return std::filesystem::remove_all(database_folder(), fault), !fault; }));
    }

    /// Ends what `work` does in a process of its own after a time, up to so many microseconds.
    template <class Work>
    void kill_within(long microseconds, const Work& work) {
        const auto moment = static_cast<long>(random_() % static_cast<unsigned long>(microseconds));
        const test::Child child([&](const auto& report) {
            report();
            work();
        });
        child.wait_for_report();
        const timespec time{.tv_sec = 0, .tv_nsec = moment * 1000};
        ppoll(nullptr, 0, &time, nullptr); // any moment will do
    }

    std::mt19937 random_{static_cast<unsigned>(test::number_from_environment("TORTURE_SEED", 1))};
    std::shared_ptr<test::RecordingLogger> logger_ = std::make_shared<test::RecordingLogger>();
    test::TemporaryOltRoot root_;
    std::optional<CfgDbWrapper> client_;
};

constexpr std::size_t page = 4096;

std::string random_bytes(std::mt19937& random, std::size_t size) {
    std::string bytes(size, '\0');
    for (auto& byte : bytes) {
        byte = static_cast<char>(random());
    }
    return bytes;
}

/// Spoils the file in one of several ways, and says how.
std::string damage(std::string& file, std::mt19937& random) {
    const auto at = random() % file.size();
    const auto page_at = at / page * page;
    const auto flip = [&](std::size_t byte) {
        const auto bit = random() % 8;
        file[byte] ^= static_cast<char>(1U << bit);
        return fmt::format("bit {} of byte {} of page {} is flipped", bit, byte % page, byte / page);
    };
    switch (random() % 8) {
    case 0:
        file.resize(at);
        return fmt::format("{} bytes are left", at);
    case 1:
        std::fill_n(file.begin() + static_cast<long>(page_at), page, '\0');
        return fmt::format("page {} is zero", at / page);
    case 2:
        file.replace(page_at, page, random_bytes(random, page));
        return fmt::format("page {} is random", at / page);
    case 3: {
        const auto other = random() % (file.size() / page);
        file.replace(page_at, page, file.substr(other * page, page));
        return fmt::format("page {} stands in place of page {}", other, at / page);
    }
    case 4: // the heads and what is behind them
        return flip(random() % 2 * page + random() % 160);
    case 5: // the header of a page and its directory of entries
        return flip(page_at + random() % 64);
    case 6:
        return flip(at);
    default: {
        const auto size = std::min<std::size_t>(1 + random() % 64, file.size() - at);
        file.replace(at, size, random_bytes(random, size));
        return fmt::format("{} bytes at {} of page {} are random", size, at % page, at / page);
    }
    }
}

// What runs is all there, or all of what was saved, and then the log says so. Nothing ends the process, and the
// database goes on to work.
TEST_F(Torture, DamageOfTheDatabase) {
    run("before"); // so that there are free pages
    run("runs");
    client_.reset();
    const auto whole = read_file(database_folder() / "data.mdb");
    int made_anew = 0;
    test::repeat([&](int) {
        auto file = whole;
        SCOPED_TRACE(damage(file, random_));
        remove_database();
        root_.write("run/cfgdb/data.mdb", file);
        open();
        const bool is_new = testing::Matches(Contains(HasSubstr("was damaged and is made anew")))(logger_->texts());
        made_anew += is_new ? 1 : 0;
        ASSERT_EQ(description(), is_new ? "saved" : "runs");
        run("again");
        run("and again");
        ASSERT_EQ(description(), "and again");
        client_.reset();
    });
    std::printf("made anew: %d times\n", made_anew);
}

// Wherever it is killed, the next start finds every record, those of the candidate too.
TEST_F(Torture, KillsWhileADatabaseIsCarriedOver) {
    test::apply(*client_, {test::edit_ont(1, 1, ont_json(0, "pending"))});
    test::OtherRelease(test::add_colour).take_over(test::database_of(*client_), [](cJSON& record) {
        cJSON_AddTrueToObject(&record, "colour");
    });
    client_.reset();
    const auto before = read_file(database_folder() / "data.mdb");
    int done = 0;
    test::repeat([&](int) {
        remove_database();
        root_.write("run/cfgdb/data.mdb", before);
        kill_within(60'000, [] { const CfgDbWrapper client("CHILD"); });
        open();
        done += testing::Matches(Contains(HasSubstr("or earlier")))(logger_->texts()) ? 1 : 0;
        ASSERT_THAT(logger_->texts(), Contains(HasSubstr("colour: Unknown key is skipped")));
        ASSERT_EQ(description(), "runs");
        ASSERT_EQ(test::stored<PonOnt>(*client_, Store::candidate).description, std::string_view("pending"));
        client_.reset();
    });
    std::printf("carried over before the kill: %d times\n", done);
}

/// A saved file of another release, with faults in some places.
std::string random_file(std::mt19937& random) {
    std::string records =
        R"("ZebGCfg_pon_port_state":{"1":{"ont_limit":)" + std::to_string(64 + random() % 300) + "}},";
    records += R"("ZebGCfg_pon_ont":{)";
    for (unsigned nth = 0; nth < onts; ++nth) {
        auto json = ont_json(random() % 50 == 0 ? random() % onts : nth, random() % 50 == 0 ? "\\u0007" : "file");
        if (random() % 50 == 0) {
            json.replace(json.size() - 1, 1, fmt::format(R"(,"k{}":1}})", random() % 3));
        }
        if (random() % 50 == 0) {
            json.replace(json.find("template\":1"), 11, fmt::format("template\":{}", random() % 40));
        }
        records += fmt::format(R"({}"{}":{})", nth == 0 ? "" : ",", nth + 1, json);
    }
    records += "}";
    if (random() % 4 == 0) {
        records +=
            fmt::format(R"(,"CommonGCfg_profiles_profiles_ont_cross_connect":{{"{}":{{"name":"x","s_vid":{}}}}})",
                        random() % 8 + 2, random() % 500);
    }
    if (random() % 4 == 0) {
        records += R"(,"CommonGCfg_system_oob":{"enabled":false},"new_element":{"a":1})";
    }
    return test::printed(serializer::Tree(cJSON_Parse(("{" + records + "}").c_str())).get());
}

// Whatever a release wrote, and wherever the start is killed: the next one runs what fits of it, and what is saved then
// is taken as it is.
TEST_F(Torture, KillsWhileAForeignFileIsLoaded) {
    test::repeat([&](int) {
        client_.reset();
        remove_database();
        std::filesystem::remove_all(root_.path() / "configuration");
        const auto records = random_file(random_);
        root_.write(save_path + 1, fmt::format(R"({{"format":"olt-config","version":1,"crc32":{},"records":{}}})",
                                               checksum(records), records));
        kill_within(60'000, [] { const CfgDbWrapper client("CHILD"); });
        open();
        ASSERT_THAT(logger_->texts(), Contains(HasSubstr("Started with the saved configuration")));
        const auto lines = logger_->texts();
        ASSERT_EQ(save_running_configuration(client_->handle(), save_path), 0);
        client_.reset();
        remove_database();
        open();
        ASSERT_THAT(logger_->texts(), testing::ElementsAre(testing::StartsWith("Started with the saved")));
        unsigned left = 0;
        for (unsigned nth = 0; nth < onts; ++nth) {
            left +=
                test::stored<PonOnt>(*client_, Store::running, {static_cast<std::uint16_t>(nth)}).serial != 0 ? 1 : 0;
        }
        ASSERT_GT(left, onts / 8) << testing::PrintToString(lines);
    });
}

// The file is the old one or the new one, and nothing else lies about after the next start.
TEST_F(Torture, KillsWhileAFileIsSaved) {
    client_.reset();
    remove_database();
    test::repeat([&](int number) {
        kill_within(20'000, [&] {
            CfgDbWrapper client("CHILD");
            for (unsigned turn = 0;; ++turn) {
                test::apply(client, {test::edit_hostname(fmt::format("r{}-{}", number, turn))});
                test::commit(client);
                save_running_configuration(client.handle(), save_path);
            }
        });
        remove_database();
        open();
        ASSERT_THAT(logger_->texts(), testing::ElementsAre(testing::EndsWith(save_path)));
        ASSERT_EQ(description(), "saved");
        client_.reset();
        for (const auto& entry : std::filesystem::directory_iterator(root_.path() / "configuration")) {
            ASSERT_THAT(entry.path().filename().string(),
                        testing::AnyOf("save-config", "save-config.previous", ".lock"));
        }
    });
}

} // namespace
} // namespace xpon::cfgdb
