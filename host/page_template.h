#pragma once

#include <string>
#include <string_view>

namespace tidewell {

// The host page around the component's output: an HTML document in UTF-8 that links the style
// sheet. The screens are table layouts made for the browsers' compatibility mode, so the
// document type is the one that keeps browsers in it. A site may give its own template; it
// must hold the marker where the component's output goes.
inline constexpr std::string_view kComponentMarker = "{{tidewell}}";

std::string DefaultPageTemplate();

// Whether `text` can serve as a template (holds the marker once).
bool IsPageTemplate(std::string_view text);

// The template with the marker replaced by the component's output.
std::string FillPageTemplate(std::string_view page_template, std::string component_output);

}  // namespace tidewell
