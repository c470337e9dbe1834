#include "tests/unit/platform/serializer/json_records.hpp"
#include "tests/unit/platform/serializer/record_generator.hpp"

#include <cerrno>
#include <cstdlib>

namespace xpon {
namespace {

/// Makes one cJSON allocation fail and counts blocks that are not freed.
class FailingAllocation {
public:
    explicit FailingAllocation(int position) {
        until_failure = position;
        blocks = 0;
        cJSON_Hooks hooks{[](std::size_t size) -> void* {
                              if (until_failure-- == 0) {
                                  return nullptr;
                              }
                              ++blocks;
                              return std::malloc(size);
                          },
                          [](void* block) {
                              blocks -= block == nullptr ? 0 : 1;
                              std::free(block);
                          }};
        cJSON_InitHooks(&hooks);
    }
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;
    ~FailingAllocation() {
        cJSON_InitHooks(nullptr);
    }

    static inline int until_failure = 0;
    static inline int blocks = 0;
};

/// Repeats `step` with every allocation failing in turn, until none is left to fail.
template <class Step>
void with_every_failure(const Step& step) {
    for (int position = 0;; ++position) {
        ASSERT_LT(position, 10000);
        const FailingAllocation failing(position);
        errno = 0;
        const int status = step();
        EXPECT_EQ(FailingAllocation::blocks, 0) << "leak after failure " << position;
        if (FailingAllocation::until_failure >= 0) {
            EXPECT_EQ(status, 0);
            return;
        }
        EXPECT_EQ(status, -1);
        EXPECT_EQ(errno, ENOMEM);
    }
}

TEST(OutOfMemory, EndsASerialiserWithoutALeak) {
    for (const auto& element : cfgdb::all_elements()) {
        test::Record record;
        test::read(element.table, test::generate_object(element.table, 1).get(), record);
        with_every_failure([&] {
            cJSON* errors = nullptr;
            const serializer::Tree target(cJSON_CreateObject());
            return target ? serializer::serialize_record(element.table, record.data(), target.get(), &errors)
                          : (errno = ENOMEM, -1);
        });
    }
}

TEST(OutOfMemory, EndsADeserialiserWithErrorsWithoutALeak) {
    const serializer::Tree data(cJSON_Parse(R"({"enabled":3,"servers":[{"address":"a b"}],"x":1,"x":2})"));
    with_every_failure([&] {
        cfgdb::NtpConfig record{};
        cJSON* errors = nullptr;
        const int status =
            serializer::deserialize_record(test::table_of<cfgdb::NtpConfig>(), data.get(), &record, &errors);
        EXPECT_EQ(errors != nullptr, status == 0);
        cJSON_Delete(errors);
        return status;
    });
}

} // namespace
} // namespace xpon
