// Glob patterns for excluding paths: `*` and `?` within one path part, `**` across parts.
#pragma once

#include <string_view>

namespace arbolet::check {

// Whether a path (with `/` between its parts) matches the pattern. A pattern without `/` is
// matched against each part of the path, so `*.frm` or `vendor` excludes wherever it appears;
// a pattern with `/` is matched against the whole path, and also against its tails, so that
// `legacy/**` excludes a `legacy` folder below whatever the path starts with.
bool PathMatchesGlob(std::string_view path, std::string_view pattern);

}  // namespace arbolet::check
