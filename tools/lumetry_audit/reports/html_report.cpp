#include "lumetry_audit/reports/report.h"

#include "base/color_metrics.h"
#include "base/number_text.h"
#include "base/text.h"
#include "lumetry_audit/reports/badge_places.h"
#include "lumetry_audit/reports/html_style.h"
#include "lumetry_audit/reports/wording.h"

#include <QBuffer>
#include <QByteArray>
#include <QImage>

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <iterator>
#include <sstream>

namespace lumetry {
namespace {

/// Text for elements and for attributes in double quotes.
std::string escaped(const std::string& text) {
    std::string safe;
    for (const char letter : onOneLine(validUtf8(text))) {
        switch (letter) {
        case '&':
            safe += "&amp;";
            break;
        case '<':
            safe += "&lt;";
            break;
        case '>':
            safe += "&gt;";
            break;
        case '"':
            safe += "&quot;";
            break;
        case '\'':
            safe += "&#39;";
            break;
        default:
            safe += letter;
        }
    }
    return safe;
}

std::string pngOf(const Bitmap& bitmap) {
    const auto* const bytes = reinterpret_cast<const uchar*>(bitmap.pixels.data());
    const QImage image(bytes, bitmap.width, bitmap.height, QImage::Format_ARGB32_Premultiplied);
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return png.toBase64().toStdString();
}

std::string percent(double part, double whole) {
    return fixedText(whole > 0 ? 100 * part / whole : 0, 3) + "%";
}

/// What a finding is drawn and listed as.
std::string kindOf(const Finding& finding) {
    return finding.baseline ? "known" : std::string(severityName(finding.severity));
}

class Page {
public:
    explicit Page(const AuditReport& report) : report_(report), audit_(report.audit) {}

    [[nodiscard]] std::string text() {
        const std::string title = audit_.title.empty() ? audit_.app : audit_.title;
        out_ << "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
                "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
                "img-src data:; style-src 'unsafe-inline'\">\n"
                "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
             << "<title>" << escaped(title) << " · audit</title>\n<style>" << htmlStyle
             << "</style>\n</head>\n<body>\n";
        addHeader(title);
        out_ << "<main>\n";
        addPicture(title);
        addFindings();
        out_ << "</main>\n";
        addInventory();
        out_ << "<footer>Measured by Lumetry " << LUMETRY_VERSION << ".</footer>\n</body>\n"
             << "</html>\n";
        return out_.str();
    }

private:
    void addHeader(const std::string& title) {
        out_ << "<header>\n<h1>" << escaped(title) << "</h1>\n<p>Found: <strong>"
             << countText(report_.findings) << "</strong>";
        if (report_.ignored > 0) {
            out_ << ", " << report_.ignored << " ignored";
        }
        out_ << ". " << audit_.components.size() << " components measured, of " << audit_.elements
             << " elements";
        if (const auto leftOut = leftOutText(audit_.leftOut); !leftOut.empty()) {
            out_ << "; left out: " << leftOut;
        }
        out_ << ".</p>\n";
        if (const auto shortfall = shortfallText(audit_); !shortfall.empty()) {
            out_ << "<p>Note: " << shortfall << "</p>\n";
        }
        out_ << "<p class=\"where\">" << escaped(audit_.app) << " · " << boxText(audit_.window)
             << " · scale " << audit_.scale << "</p>\n</header>\n";
    }

    void addPicture(const std::string& title) {
        out_ << "<section class=\"picture\" aria-labelledby=\"picture\">\n"
                "<h2 id=\"picture\">Picture</h2>\n";
        if (audit_.picture.pixels.empty()) {
            out_ << "<p>The screen could not be read.</p>\n</section>\n";
            return;
        }
        const double width = audit_.window.width;
        out_ << R"(<div class="frame" style="width:)" << fixedText(width, 2)
             << "px;min-width:" << fixedText(std::min(width, narrowestPicture), 2)
             << "px\">\n<img alt=\"The window " << escaped(title) << " as it was audited\" width=\""
             << audit_.picture.width << "\" height=\"" << audit_.picture.height
             << "\" src=\"data:image/png;base64," << pngOf(audit_.picture) << "\">\n";
        BadgePlaces places(audit_.window);
        for (std::size_t place = 0; place < report_.findings.size(); ++place) {
            if (isMarked(report_.findings[place])) {
                addMark(report_.findings[place], place + 1, places);
            }
        }
        out_ << "</div>\n</section>\n";
    }

    /// What is about the window as a whole is only listed.
    [[nodiscard]] bool isMarked(const Finding& finding) const {
        return !audit_.picture.pixels.empty() && finding.box != audit_.window;
    }

    /// The number, which leads back to the list, where the keyboard goes from finding to finding.
    void addMark(const Finding& finding, std::size_t number, BadgePlaces& places) {
        const Rect& box = finding.box;
        const BadgePlaces::Place place = places.next(box);
        out_ << "<a class=\"badge " << (place.inside ? "inside " : "") << kindOf(finding)
             << "\" id=\"mark-" << number << "\" href=\"#finding-" << number
             << R"(" tabindex="-1" aria-label="Finding )" << number << ": "
             << describe(finding.rule).identifier << ", " << escaped(finding.header)
             << "\" style=\"left:" << percent(place.left, 1) << ";top:" << percent(place.edge, 1)
             << "\">" << number << "</a><span class=\"outline " << kindOf(finding)
             << "\" style=\"left:" << percent(box.x - audit_.window.x, audit_.window.width)
             << ";top:" << percent(box.y - audit_.window.y, audit_.window.height)
             << ";width:" << percent(box.width, audit_.window.width)
             << ";height:" << percent(box.height, audit_.window.height) << "\"></span>\n";
    }

    void addFindings() {
        out_ << "<section class=\"findings\" aria-labelledby=\"findings\">\n"
                "<h2 id=\"findings\">Findings</h2>\n";
        if (report_.findings.empty()) {
            out_ << "<p>Nothing was found.</p>\n";
        }
        for (std::size_t place = 0; place < report_.findings.size();) {
            const Rule rule = report_.findings[place].rule;
            const RuleDescription& description = describe(rule, report_.enhanced);
            out_ << "<h3>" << ruleTitle(description) << "</h3>\n<p>" << description.summary
                 << "</p>\n<ol start=\"" << place + 1 << "\">\n";
            for (; place < report_.findings.size() && report_.findings[place].rule == rule;
                 ++place) {
                addFinding(report_.findings[place], place + 1);
            }
            out_ << "</ol>\n";
        }
        out_ << "</section>\n";
    }

    void addFinding(const Finding& finding, std::size_t number) {
        out_ << "<li id=\"finding-" << number << "\" class=\"" << kindOf(finding) << "\">\n<p>";
        if (isMarked(finding)) {
            out_ << R"(<a class="number" href="#mark-)" << number << "\" aria-label=\"Show finding "
                 << number << " in the picture\">" << number << "</a>";
        } else {
            out_ << "<span class=\"number\">" << number << "</span>";
        }
        out_ << " <strong>" << escaped(finding.header) << "</strong> <em>" << kindOf(finding)
             << "</em></p>\n<p>" << escaped(finding.value) << ", wanted " << escaped(finding.wanted)
             << "</p>\n<p class=\"where\">" << boxText(finding.box) << "<br>"
             << escaped(finding.path) << "</p>\n</li>\n";
    }

    void addInventory() {
        const Inventory& inventory = report_.inventory;
        out_ << "<section class=\"inventory\" aria-labelledby=\"inventory\">\n"
                "<h2 id=\"inventory\">What there is</h2>\n<div>\n";
        beginList("Palette", "palette", inventory.palette.empty());
        for (const PaletteColor& color : inventory.palette) {
            const std::string hex = hexString(color.color);
            out_ << R"(<li><span class="swatch" style="background:)" << hex << "\"></span>" << hex
                 << " " << usesText(color) << " (" << color.count << ")</li>\n";
        }
        endList(inventory.palette.empty());
        beginList("Type scale", "type", inventory.type.empty());
        for (const auto& [face, count] : inventory.type) {
            constexpr double smallest = 10;
            constexpr double largest = 48;
            out_ << "<li><span style=\"font-size:"
                 << fixedText(std::clamp(face.size, smallest, largest), 0)
                 << "px;font-weight:" << (face.bold ? 700 : 400)
                 << ";font-family:" << familyList(face.family) << "\">Hamburgefonts</span> "
                 << escaped(typefaceText(face)) << " (" << count << ")</li>\n";
        }
        endList(inventory.type.empty());
        beginList("Corner radii", "radii", inventory.radii.empty());
        for (const auto& [radius, count] : inventory.radii) {
            out_ << R"(<li><span class="corner" style="border-top-left-radius:)" << radius
                 << "px\"></span>≈ " << radius << "px (" << count << ")</li>\n";
        }
        endList(inventory.radii.empty());
        beginList("Spacing", "spacing", inventory.spacing.empty());
        for (const auto& [spacing, count] : inventory.spacing) {
            out_ << "<li>" << escaped(spacing) << " (" << count << ")</li>\n";
        }
        endList(inventory.spacing.empty());
        out_ << "</div>\n</section>\n";
    }

    void beginList(const char* title, const char* kind, bool empty) {
        out_ << "<div class=\"" << kind << "\">\n<h3>" << title << "</h3>\n"
             << (empty ? "<p>None were found.</p>\n" : "<ul>\n");
    }
    void endList(bool empty) { out_ << (empty ? "" : "</ul>\n") << "</div>\n"; }

    /// A family's name in a style sheet inside an attribute: nothing but letters that mean nothing
    /// else there.
    static std::string familyList(const std::string& family) {
        std::string name;
        std::ranges::copy_if(family, std::back_inserter(name), [](char letter) {
            return std::isalnum(static_cast<unsigned char>(letter)) != 0 || letter == ' ' ||
                   letter == '-';
        });
        return "'" + name + "',sans-serif";
    }

    const AuditReport& report_;
    const WindowAudit& audit_;
    std::ostringstream out_;
};

} // namespace

std::string htmlReport(const AuditReport& report) {
    return Page(report).text();
}

} // namespace lumetry
