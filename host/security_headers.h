#pragma once

#include <string>
#include <utility>
#include <vector>

#include "host/config.h"

namespace tidewell {

// The Content-Security-Policy of every answer. It allows what the screens write and nothing
// else:
//   - script-src 'unsafe-inline': each form's validator and the date picker's opener are
//     inline <script> blocks, the buttons call them from onclick/onsubmit attributes and the
//     date links are javascript: links; no script is ever loaded from a file.
//   - style-src 'self' 'unsafe-inline', style-src-elem 'self': the style sheet, and the two
//     style attributes of the wrapper divs (Visible, Position). Browsers that know
//     style-src-elem refuse inline <style> blocks; older ones fall back to style-src.
//   - img-src 'self' plus the origin of an ImagePath that names another site.
//   - form-action 'self': every form posts back to its own page.
//   - frame-ancestors: 'none', or the FrameAncestors origins.
// The date picker pop-up is a window the page opens on the same page, which no directive
// governs. ContentSecurityPolicy replaces the whole policy (for a PageTemplate that needs more).
std::string ContentSecurityPolicy(const SiteConfig& config);

// The headers sent with every answer, pages, files and errors alike: the policy above,
// Referrer-Policy no-referrer (links carry keys), X-Content-Type-Options nosniff, and
// X-Frame-Options DENY unless FrameAncestors names who may frame the pages.
std::vector<std::pair<std::string, std::string>> SecurityHeaders(const SiteConfig& config);

}  // namespace tidewell
