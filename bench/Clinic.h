#pragma once

#include "platform/adodb/Recordset.h"

#include <string>

namespace Bench {

constexpr int Images = 1'000'000;
constexpr int Patients = 100;  ///< image i belongs to patient i % Patients, so that rows lie scattered

/// The patients with a card list, half cards and half series, in the order of their dates.
struct ListOfCards {
    int patient;
    int entries;
    int firstKey;  ///< the first key of its cards and of its series; the others follow
};
constexpr ListOfCards ShortList{1001, 100, 1}, LongList{1002, 4000, 1000};

/// The path of a database of a million images and these lists, made in `folder` unless it is there already.
std::string ClinicWithMillionImages(const std::string& folder);

/// Opens it through the library's database layer.
Platform::Ref<ADODB::Connection> Connect(const std::string& path);

}  // namespace Bench
