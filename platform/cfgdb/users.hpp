#pragma once

#include "cfgdb/transaction.hpp"
#include "xpon/cfgdb/user_record.hpp"

#include <optional>
#include <string_view>

namespace xpon::cfgdb {

/// The users of a new database.
void put_default_users(WriteTransaction& transaction);

std::optional<User_record> find_user(const Transaction& transaction, std::string_view name);

} // namespace xpon::cfgdb
