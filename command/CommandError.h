// What ends a command before it has done its work: one line for the user that says what was wrong,
// where, and what would be right. The command exits with 2.
#pragma once

#include <stdexcept>

namespace Command {

class CommandError : public std::runtime_error {
 public:
   using runtime_error::runtime_error;
};

} // namespace Command
