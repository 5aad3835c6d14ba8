#include "library/TypeLibrary.h"

#include "anatomy/cAnatomicDescription.h"
#include "cardlist/cUniCard.h"
#include "frame/SharedTypes.h"
#include "frame/SuiteTypes.h"
#include "frame/cGlobalList.h"
#include "library/ClassTable.h"
#include "people/cDoctor.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace OXClass {

using namespace Platform;

namespace {

using Kind = MemberType::Kind;

String Head(const Platform::LibraryDescription& library) {
    return String("// The type library of ") + library.Name +
           ". Made by: oxclass idl\n\nimport \"oaidl.idl\";\n\n[\n    uuid(" + library.Identifier + "),\n    version(" +
           library.Version + "),\n    lcid(" + CStr(std::int64_t{library.Locale}) + "),\n    helpstring(\"" +
           library.HelpText + "\")\n]\nlibrary " + library.Name + " {\n\nimportlib(\"stdole2.tlb\");\n\n";
}

constexpr const char* Records = R"(// Records that the programs of the suite pass among themselves.

typedef struct { unsigned char str[64]; } xigString64;
typedef struct { unsigned char str[256]; } xigString256;
typedef struct { unsigned char str[1024]; } xigString1024;
typedef struct { unsigned char str[20001]; } xigString20K;

typedef struct {
    long dwSize;
    gtFuncs lFunc;
    long l1, l2, l3, l4;
    double dbl1, dbl2, dbl3, dbl4;
    DATE dte1, dte2, dte3, dte4;
    xigString256 s1_256, s2_256, s3_256, s4_256;
    xigString1024 s5_1024, s6_1024, s7_1024, s8_1024, s9_1024;
    xigString20K s10_20K;
} GeneralType;

typedef struct {
    BSTR CIDSchemeDesignator;
    BSTR CIDValue;
    BSTR CIDMeaning;
} CID;

typedef struct {
    BSTR CIDSchemeDesignator;
    BSTR CIDValue;
    BSTR CIDMeaning;
    CIDTypes CIDType;
    VARIANT_BOOL CIDDefault;
} CIDExt;

)";

String Hexadecimal(Long number) {
    std::array<char, 12> digits{};
    std::snprintf(digits.data(), digits.size(), "0x%08x", static_cast<unsigned>(number));
    return digits.data();
}

// ---- enumerations -----------------------------------------------------------------------------------

String EnumerationText(const Enumeration& enumeration) {
    String text = "typedef enum {\n";
    for (const EnumerationValue& value : enumeration.Values)
        text += String("    ") + value.Name + " = " + CStr(value.Value) + ",\n";
    text.resize(text.size() - 2);
    return text + "\n} " + enumeration.Name + ";\n\n";
}

// ---- interfaces -------------------------------------------------------------------------------------

bool IsPublicClass(const char* name) {
    return std::ranges::any_of(ClassTable(),
                               [&](const ClassEntry& entry) { return std::string_view(entry.Name) == name; });
}

String TypeText(const MemberType& type) {
    switch (type.Is) {
        case Kind::None: return "void";
        case Kind::Boolean: return "VARIANT_BOOL";
        case Kind::Int16: return "short";
        case Kind::Int32: return "long";
        case Kind::Float32: return "float";
        case Kind::Float64: return "double";
        case Kind::Days: return "DATE";
        case Kind::Text: return "BSTR";
        case Kind::Any: return "VARIANT";
        case Kind::Enumeration: return type.Name;
        case Kind::Object: break;
    }
    if (IsPublicClass(type.Name)) return String("_") + type.Name + "*";
    return std::string_view(type.Name) == "Enumerator" ? "IUnknown*" : "IDispatch*";
}

/// Returns the attribute for the value of an argument that is left out. An argument by reference has no value
/// in the text: the operation itself supplies it.
String DefaultText(const Argument& argument) {
    if (argument.ByReference) return "optional";
    switch (argument.Type.Is) {
        case Kind::Object:
        case Kind::Any: return "optional";
        case Kind::Text: return "defaultvalue(\"\")";
        case Kind::Boolean: return CBool(argument.Default) ? "defaultvalue(-1)" : "defaultvalue(0)";
        default: return "defaultvalue(0)";
    }
}

/// Returns the declaration of an argument, such as "[in, out] long* ID".
String ArgumentText(const Member& member, const Argument& argument) {
    const bool place = member.CrossesAsPlace(argument);
    String text = place ? "[in, out" : "[in";
    if (argument.Optional) text += ", " + DefaultText(argument);
    return text + "] " + TypeText(argument.Type) + (place ? "* " : " ") + argument.Name;
}

const char* KindText(MemberKind kind) {
    switch (kind) {
        case MemberKind::Operation: return "";
        case MemberKind::Get: return ", propget";
        case MemberKind::Put: return ", propput";
        case MemberKind::PutRef: return ", propputref";
    }
    return "";
}

String HelpText(const char* help) { return String("helpstring(\"") + help + "\")"; }

String MemberText(const Member& member) {
    String text = "    [id(" + Hexadecimal(member.DispId) + "), " + HelpText(member.Help) + KindText(member.Kind) +
                  (member.DispId == EnumeratorMember ? ", restricted" : "") + "] HRESULT " + member.Name + "(";
    String arguments;
    for (const Argument& argument : member.Arguments)
        arguments += (arguments.empty() ? "" : ", ") + ArgumentText(member, argument);
    if (member.Result.Is != Kind::None)
        arguments += (arguments.empty() ? "[out, retval] " : ", [out, retval] ") + TypeText(member.Result) + "* Result";
    return text + arguments + ");\n";
}

String InterfaceText(const ClassEntry& entry) {
    String text = String("[object, uuid(") + entry.InterfaceID + "), dual, oleautomation, hidden, nonextensible]\n" +
                  "interface _" + entry.Name + " : IDispatch {\n";
    for (const Member& member : entry.Make()->Describe().Members()) text += MemberText(member);
    return text + "};\n\n";
}

String ClassText(const ClassEntry& entry) {
    return String("// ") + (entry.IsGlobal ? "global, multi-use" : "multi-use") + "\n[uuid(" + entry.ClassID + "), " +
           HelpText(entry.Make()->Describe().Help()) + (entry.IsGlobal ? ", appobject" : "") + "]\ncoclass " +
           entry.Name + " { [default] interface _" + entry.Name + "; };\n\n";
}

}  // namespace

std::span<const Enumeration> PublicEnumerations() {
    static constexpr std::array enumerations{
        EnumerationFor<xigImageTypes>(),  EnumerationFor<DoctorType>(),           EnumerationFor<gdcmObjectLocation>(),
        EnumerationFor<gGlobalListIDs>(), EnumerationFor<ImageOwnerOjectTypes>(), EnumerationFor<ManipulationType>(),
        EnumerationFor<CardTypes>(),      EnumerationFor<AnaDescType>(),          EnumerationFor<gtFuncs>(),
        EnumerationFor<CIDTypes>(),
    };
    return enumerations;
}

String TypeLibraryText() {
    String text = Head(ThisLibrary());
    for (const Enumeration& enumeration : PublicEnumerations()) text += EnumerationText(enumeration);
    text += Records;
    for (const ClassEntry& entry : ClassTable()) text += String("interface _") + entry.Name + ";\n";
    text += "\n";
    for (const ClassEntry& entry : ClassTable()) text += InterfaceText(entry);
    for (const ClassEntry& entry : ClassTable()) text += ClassText(entry);
    return text + "}\n";
}

}  // namespace OXClass
