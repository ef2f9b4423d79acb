#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace TestSupport {

/// The user ID of "nobody", whom checks run as when the tests run as root.
constexpr unsigned unprivilegedUserID = 65534;

/// Runs `check` in a child process as an unprivileged user: "nobody" when
/// this process is root (whom permissions do not stop), else as this user.
/// `check` returns what went wrong, or an empty text when all went well; what
/// it returned comes back, or "the check died" when it did not return. Absent
/// when this machine cannot run it as such a user (root that may not change
/// user): the test then skips and says so.
std::optional<std::string> runAsUnprivilegedUser(const std::function<std::string()>& check);

/// Lets the unprivileged user into `folder` (and make files there): the folder
/// becomes theirs when the tests run as root.
void shareWithUnprivilegedUser(const std::filesystem::path& folder);

} // namespace TestSupport
