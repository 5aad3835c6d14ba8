#pragma once

#include "platform/adodb/Recordset.h"

#include <string>

namespace Bench {

constexpr int Images = 1'000'000;
constexpr int Patients = 100;  ///< image i belongs to patient i % Patients, so that rows lie scattered

/// The path of a database of a million images, made in `folder` unless it is there already.
std::string ClinicWithMillionImages(const std::string& folder);

/// Opens it through the library's database layer.
Platform::Ref<ADODB::Connection> Connect(const std::string& path);

}  // namespace Bench
