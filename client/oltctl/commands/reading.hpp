#pragma once

#include "xpon/client/message.hpp"

#include <string>
#include <vector>

namespace xpon::oltctl {

class CommandSyntax;
class Context;

/// What a command reads: the words PATH [INDICES] [--candidate].
struct Reading {
    std::string path;
    std::vector<std::string> indices;
    bool candidate = false;
};

/// Has the command take these words.
void add_reading(CommandSyntax command, Reading& words);
/// The request for it. Of an element of the configuration all records are read when no indices are given.
client::Request request_for(Context& context, const Reading& words);

} // namespace xpon::oltctl
