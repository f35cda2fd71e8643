// Reports of `arbolet check` for CI services: GitHub Actions workflow commands, which annotate
// the lines of a pull request, and GitLab Code Quality JSON, which a merge request shows.
#pragma once

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "check/check_findings.h"

namespace arbolet::check {

// One `::error file=…,line=…,col=…,title=…::message` line per finding (`::warning` for
// warnings), escaped as GitHub reads them. Paths below the working folder (the checkout) are
// relative to it, as GitHub and GitLab match them to the repository's files.
void WriteCheckGithub(std::ostream& out, const std::vector<FileResult>& results);

// A JSON array of Code Quality issues: description, check_name, fingerprint (unique per issue),
// severity and location (path, lines.begin).
void WriteCheckGitlab(std::ostream& out, const std::vector<FileResult>& results);

// GitHub's escaping of a workflow command's message (`%`, CR, LF) and of a property value
// (also `:` and `,`).
std::string GithubMessage(std::string_view text);
std::string GithubProperty(std::string_view text);

}  // namespace arbolet::check
