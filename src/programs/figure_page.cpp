// SPDX-License-Identifier: MIT
//
// The page for a browser. gnuplot gives each picture the script that zooms it and shows where the
// pointer is; a click on a name in the legend hides the curve, and here also what belongs to it.
#include <cstring>
#include <string_view>

#include "figure.h"

// The circles of gnuplot have lines as wide as their radius has units, so this is no length but a
// part of the radius. gnuplot's background has a black border of its own.
static constexpr char HEAD[] = R"(<style>
body { margin: 0; background: white; font: 10pt Arial, Helvetica, sans-serif; }
main { display: grid; width: 1000px; max-width: 100%; margin: auto; }
svg { max-width: 100%; height: auto; display: block; overflow: hidden; cursor: crosshair; }
svg > rect { stroke: none; }
svg text { user-select: none; }
[id^=gpPt] { stroke-width: 0.427; }
p { text-align: center; color: #555; margin: 4px; }
</style>
</head>
<body>
)";

// gnuplot's own listeners are there by the time of the event "load".
static constexpr char TAIL[] = R"(for (const [curve, part] of parts) {
    const from = document.getElementById(curve), to = document.getElementById(part);
    new MutationObserver(() => to.setAttribute('visibility', from.getAttribute('visibility')))
        .observe(from, {attributes: true, attributeFilter: ['visibility']});
}
addEventListener('load', () => {
    for (const svg of document.querySelectorAll('svg')) svg.gnuplot.coordinate(true);
});
</script>
</body>
</html>
)";

static constexpr char HELP[] =
    "<p>A click on a name in the legend hides its curve. Wheel: zoom. Drag: move. "
    "Right click: whole picture. Click: coordinates on and off.</p>\n";

static std::string escaped(const char* text) {
    std::string result;
    for (const char* c = text; *c != '\0'; c++) {
        if (std::strchr("&<>", *c) != nullptr)
            result += *c == '&' ? "&amp;" : *c == '<' ? "&lt;" : "&gt;";
        else
            result += *c;
    }
    return result;
}

// The pictures without what stands around them in files of their own. The last one is whole.
static std::string inline_pictures(const std::string& pictures) {
    static constexpr std::string_view BEGIN = "<svg", END = "</svg>";
    std::string result;
    std::size_t from = 0;
    while ((from = pictures.find(BEGIN, from)) != std::string::npos) {
        const std::size_t to = pictures.find(END, from) + END.size();
        result += pictures.substr(from, to - from) + "\n";
        from = to;
    }
    return result;
}

// The elements that gnuplot calls so are one series each.
static std::string names_of(const part_t& part) {
    char names[100];
    std::snprintf(names, sizeof names, "['p%d_plot_%d', 'p%d_plot_%d'], ", part.panel, part.curve,
                  part.panel, part.deviations);
    return names;
}

std::string html_page(const std::string& pictures, const page_t& page, const char* title,
                      const std::vector<part_t>& parts) {
    if (pictures.find("gnuplot_svg = function") == std::string::npos)
        fail(stderr, "gnuplot has no script for pages: its file gnuplot_svg.js is missing\n");
    std::string text =
        "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
        "<meta name=\"viewport\" content=\"width=device-width\">\n<title>";
    text += escaped(title) + "</title>\n" + HEAD;
    text += "<main style=\"grid-template-columns: repeat(" + std::to_string(page.columns) +
            ", 1fr)\">\n" + inline_pictures(pictures) + "</main>\n" + HELP;
    text += "<script>\nconst parts = [";
    for (const part_t& part : parts)
        text += names_of(part);
    return text + "];\n" + TAIL;
}
