#include "api_service/request_memory.hpp"
#include "xpon/core/json_tree.hpp"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace xpon::api_service {
namespace {

class RequestMemoryTest : public testing::Test {
protected:
    RequestMemoryTest() {
        static const bool used = (RequestMemory::use(), true);
        EXPECT_TRUE(used);
    }

    static core::JsonTree make_tree(int items) {
        core::JsonTree array(cJSON_CreateArray());
        for (int i = 0; i < items; ++i) {
            cJSON_AddItemToArray(array.get(), cJSON_CreateString(std::to_string(i).c_str()));
        }
        return array;
    }

    static void expect_whole(const core::JsonTree& array, int items) {
        int i = 0;
        for (const auto* item = array->child; item != nullptr; item = item->next) {
            ASSERT_EQ(item->valuestring, std::to_string(i++));
        }
        ASSERT_EQ(i, items);
    }
};

TEST_F(RequestMemoryTest, IsGivenBackBeyondTheLimit) {
    {
        const RequestMemory::Scope request;
        const auto tree = make_tree(100'000);
        EXPECT_GT(RequestMemory::bytes_taken(), 8'000'000);
        expect_whole(tree, 100'000);
    }
    EXPECT_LE(RequestMemory::bytes_taken(), RequestMemory::kept_bytes);
}

TEST_F(RequestMemoryTest, IsUsedAgainWithinARequest) {
    const RequestMemory::Scope request;
    for (int record = 0; record < 100'000; ++record) {
        ASSERT_NE(make_tree(20), nullptr);
    }
    EXPECT_LE(RequestMemory::bytes_taken(), RequestMemory::kept_bytes);
}

TEST_F(RequestMemoryTest, TreesThatOutliveTheirRequestStayWhole) {
    std::vector<core::JsonTree> kept;
    for (int number = 0; number < 200; ++number) {
        const RequestMemory::Scope request;
        const auto passing = make_tree(1000);
        kept.push_back(make_tree(number * 10));
        expect_whole(passing, 1000);
    }
    for (std::size_t number = 0; number < kept.size(); number += 2) {
        kept[number].reset();
    }
    {
        const RequestMemory::Scope request;
        expect_whole(make_tree(50'000), 50'000);
    }
    for (std::size_t number = 1; number < kept.size(); number += 2) {
        expect_whole(kept[number], static_cast<int>(number) * 10);
    }
    kept.clear();
    {
        const RequestMemory::Scope request;
    }
    EXPECT_LE(RequestMemory::bytes_taken(), RequestMemory::kept_bytes);
}

TEST_F(RequestMemoryTest, WhatDoesNotFitComesFromTheHeap) {
    const RequestMemory::Scope request;
    const std::string large(60'000, 'x');
    std::vector<core::JsonTree> trees;
    for (std::size_t bytes = 0; bytes < 2 * RequestMemory::most_bytes; bytes += large.size()) {
        trees.emplace_back(cJSON_CreateString(large.c_str()));
    }
    EXPECT_LE(RequestMemory::bytes_taken(), RequestMemory::most_bytes);
    trees.emplace_back(cJSON_CreateString(std::string(1'000'000, 'y').c_str()));
    for (const auto& tree : trees) {
        ASSERT_TRUE(tree->valuestring != nullptr && (tree->valuestring == large || tree == trees.back()));
    }
}

} // namespace
} // namespace xpon::api_service
