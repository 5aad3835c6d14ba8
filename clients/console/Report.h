#pragma once

#include "console/Database.h"

namespace Console {

/// The numbers of entries and failures of a report.
struct ReportTally {
    std::size_t entries = 0;
    std::size_t images = 0;
    std::size_t missing = 0;  ///< images whose picture could not be read
    std::size_t damaged = 0;  ///< cards, series, images and manipulations that could not be read, each named
};

/// Writes a page about a patient as one HTML file that needs no other file. It contains the patient's data, the clinic,
/// and the cards and series, newest first, each as a picture that enlarges on click, with teeth, anatomy in words,
/// time, exposure, comments and remarks of each image. Cards, series and images that can't be read are named with the
/// damaged column. Pictures have at most two pixels for each CSS pixel that they are shown with. Pictures are read and
/// written one by one, so that memory is bounded by one entry without its pictures, and one picture.
///
/// Throws `UserError` for an unknown patient and for a file that can't be written; an earlier file is then unchanged.
ReportTally WriteReport(const Database& database, const std::string& patient, const std::filesystem::path& file);

}  // namespace Console
