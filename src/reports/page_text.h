// Texts from outside (answers, names, reasons) as they stand in a page. With the safeguard EscapeReports on they are text there and
// nothing else; otherwise they stay as they are.
#pragma once

#include <string>

#include "store/safeguards.h"

namespace korvane {

class PageText {
public:
    /// The safeguard is read once, so that all pages of a publish are alike.
    explicit PageText(Safeguards& safeguards) : safeguards_(safeguards), on_(safeguards.IsOn(kKey)) {}

    /// For contents and quoted attributes. Placeholders of the templates are text, too.
    std::string Text(const std::string& text) const;
    /// For `strAction`, whose own list stays a list.
    std::string Action(const std::string& action) const;
    /// For the name of a folder or file in a link (RFC 3986); the empty one is the folder of the page itself.
    std::string Link(const std::string& name) const;
    /// For a text in quotes in a query.
    std::string InQuery(const std::string& text) const;

private:
    static constexpr std::string_view kKey = "EscapeReports";

    std::string Noted(const std::string& before, std::string after) const;

    Safeguards& safeguards_;
    bool on_;
};

}  // namespace korvane
