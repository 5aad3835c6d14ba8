#pragma once

#include "platform/adodb/Recordset.h"

#include <string>
#include <vector>

namespace Bench {

constexpr int Images = 1'000'000;
constexpr int Patients = 100;  ///< image i belongs to patient i % Patients, so that rows lie scattered

/// How large a clinic is. Image i belongs to patient i % patients.
struct ClinicSize {
    int images;
    int patients;
};

/// The patients with a card list, half cards and half series, in the order of their dates.
struct ListOfCards {
    int patient;
    int entries;
    int firstKey;  ///< the first key of its cards and of its series; the others follow
};
constexpr ListOfCards ShortList{1001, 100, 1}, LongList{1002, 4000, 1000};

/// Returns the path of a database of this size with these lists, which is made in `folder` unless it is there already.
std::string ClinicIn(const std::string& folder, const std::string& name, ClinicSize size,
                     const std::vector<ListOfCards>& lists);

/// Opens it through the library's database layer.
Platform::Ref<ADODB::Connection> Connect(const std::string& path);

}  // namespace Bench
