#include "kit/Database.h"

#include "kit/ForeignView.h"

#include "Schema.h"
#include "platform/component/dispatch/Interface.h"
#include "platform/runtime/Services.h"

namespace TestKit {
namespace {

const char* TypeName(const MemberType& type) {
    using Kind = MemberType::Kind;
    switch (type.Is) {
        case Kind::None: return "";
        case Kind::Boolean: return "boolean";
        case Kind::Int16: return "int16";
        case Kind::Int32: return "int32";
        case Kind::Float32: return "float";
        case Kind::Float64: return "double";
        case Kind::Days: return "date";
        case Kind::Text: return "string";
        case Kind::Any: return "variant";
        case Kind::Object:
        case Kind::Enumeration: return type.Name;
    }
    return "";
}

String ArgumentText(const Argument& argument) {
    const String text = String(argument.Name) + ": " + TypeName(argument.Type) + (argument.ByReference ? "&" : "");
    return argument.Optional ? "[" + text + "]" : text;
}

String MemberText(const Member& member) {
    if (member.Kind == MemberKind::Put || member.Kind == MemberKind::PutRef) {
        const Argument& value = member.Arguments.back();
        return String(member.Kind == MemberKind::Put ? "put " : "putref ") + member.Name + "(" + TypeName(value.Type) +
               (value.ByReference ? "&" : "") + ")";
    }
    String text = (member.Kind == MemberKind::Get ? "get " : "") + member.Name;
    if (member.Kind == MemberKind::Operation || !member.Arguments.empty()) {
        text += "(";
        for (const Argument& argument : member.Arguments)
            text += (text.back() == '(' ? "" : ", ") + ArgumentText(argument);
        text += ")";
    }
    if (member.Result.Is != MemberType::Kind::None) text += String(" -> ") + TypeName(member.Result);
    return text;
}

}  // namespace

WithDatabase::WithDatabase() {
    con = Connect();
    con->Advise(log);
}

WithDatabase::~WithDatabase() { con->Unadvise(log); }

Ref<Connection> WithDatabase::Connect() const { return OpenedAsTested(database.Settings()); }

Ref<Connection> OpenedAsTested(const String& settings) {
    Ref<Connection> connection = New<Connection>();
    connection->Open(settings);
    return IsOwnConnection() ? connection : Connection::Adapt(ForeignView(connection));
}

void WithDatabase::Run(const String& statement) {
    con->Unadvise(log);
    con->Execute(statement);
    AlignCounter(con, statement);
    con->Advise(log);
}

void WithDatabase::DropIndex(const String& index, const String& table) {
    Run("DROP INDEX IF EXISTS " + index + (TestedEngine() == Engine::MariaDB ? " ON " + table : ""));
}

Variant WithDatabase::Ask(const String& select) {
    con->Unadvise(log);
    const Ref<Recordset> rows = con->Execute(select);
    con->Advise(log);
    return rows->Eof() ? Variant() : rows->Fields(0).Value();
}

String WithDatabase::AskAll(const String& select) {
    con->Unadvise(log);
    const Ref<Recordset> rows = con->Execute(select);
    con->Advise(log);
    String all;
    for (; !rows->Eof(); rows->MoveNext()) all += (all.empty() ? "" : ",") + rows->Fields(0).As<String>();
    return all;
}

void WithDatabase::LoadLayouts() { database.RunScript(schema::layouts_sql); }

TextBoxes::TextBoxes() : before_(TheHost().MsgBox) {
    TheHost().MsgBox = [this](const String& prompt, Long) { shown.push_back(prompt); };
}

TextBoxes::~TextBoxes() { TheHost().MsgBox = before_; }

std::vector<String> MembersOf(const Object& object) {
    std::vector<String> texts;
    for (const Member& member : object.Describe().Members()) texts.push_back(MemberText(member));
    return texts;
}

}  // namespace TestKit
