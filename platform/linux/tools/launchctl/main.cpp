// The service manager tool: what is to start at login.

#include <unistd.h>

#include <iostream>
#include <string>
#include <vector>

#include "platform/linux/tools/launchctl/service_command.h"
#include "platform/linux/user_folders.h"

int main(int argc, char* argv[]) {
  constexpr int kUsage = 64;
  const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
  const auto command = quillmont::parseServiceCommand(arguments);
  if (!command) {
    std::cerr << "usage: launchctl bootstrap|bootout gui/<uid> <path>\n"
                 "       launchctl load|unload <path>\n";
    return kUsage;
  }
  const auto outcome = quillmont::runServiceCommand(*command, std::to_string(getuid()),
                                                    quillmont::configFolder() + "/autostart");
  if (!outcome.complaint.empty()) std::cerr << outcome.complaint << '\n';
  return outcome.status;
}
