#include "cfgdb/users.hpp"

#include "cfgdb/keys.hpp"

#include <array>
#include <cstring>

namespace xpon::cfgdb {
namespace {

constexpr std::array default_users{User_record{"admin", 3}, User_record{"operator", 2}, User_record{"viewer", 1},
                                   User_record{"guest", 0}};

} // namespace

void put_default_users(WriteTransaction& transaction) {
    for (const auto& user : default_users) {
        transaction.put(Key(Store::users).add(std::string_view(user.name)), std::as_bytes(std::span(&user, 1)));
    }
}

std::optional<User_record> find_user(const Transaction& transaction, std::string_view name) {
    if (name.empty() || name.size() >= sizeof(User_record::name)) {
        return {};
    }
    const auto value = transaction.get(Key(Store::users).add(name));
    if (!value || value->size() != sizeof(User_record)) {
        return {};
    }
    User_record user{};
    std::memcpy(&user, value->data(), sizeof(user));
    return user;
}

} // namespace xpon::cfgdb
