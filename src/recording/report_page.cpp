// The HTML page of a report. The build turns its parts into constants.
#include "recording/report_page.h"

#include "recording/report_parts.h"

#include <array>
#include <string_view>
#include <utility>

namespace tarn::recording {

void writeReportPage(const ReportData& data, std::FILE* output) {
    const std::array<std::pair<std::string_view, std::string_view>, 5> parts{{
        {"{{style}}", reportStyle},
        {"{{about}}", data.about},
        {"{{commands}}", data.commands},
        {"{{pictures}}", data.pictures},
        {"{{script}}", reportScript},
    }};
    std::string_view rest = reportPage;
    for (const auto& [mark, part] : parts) {
        const std::size_t place = rest.find(mark);
        std::fwrite(rest.data(), 1, place, output);
        std::fwrite(part.data(), 1, part.size(), output);
        rest.remove_prefix(place + mark.size());
    }
    std::fwrite(rest.data(), 1, rest.size(), output);
}

}  // namespace tarn::recording
