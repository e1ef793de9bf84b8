// The HTML page of a report.
#pragma once

#include <cstdio>
#include <string>

namespace tarn::recording {

/// The data of the page. Compressed data are in base 64.
struct ReportData {
    std::string about;     ///< JSON
    std::string commands;  ///< compressed JSON
    std::string pictures;  ///< compressed bytes
};

void writeReportPage(const ReportData& data, std::FILE* output);

}  // namespace tarn::recording
