#include "KvSourceKinds.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <filesystem>
#include <string>

#include "KvAccessSource.h"
#include "KvDbaseHeader.h"
#include "KvException.h"
#include "KvExitStatus.h"
#include "KvFile.h"
#include "KvHtmlSource.h"
#include "KvOptionText.h"
#include "KvParadoxHeader.h"
#include "KvSignatures.h"
#include "KvSpecificationSource.h"
#include "KvSpooledFile.h"
#include "KvSpreadSheetSource.h"
#include "KvTableSource.h"
#include "KvText.h"
#include "KvTextSource.h"
#include "KvXmlSource.h"

namespace kv {

namespace {

constexpr std::size_t BeginningSize = 512;          // bytes in which a kind shows itself

/// In lower case.
std::string ExtensionOf(const std::string& FileName)
{
    auto Extension = std::filesystem::path(FileName).extension().string();
    std::ranges::transform(Extension, Extension.begin(),
                           [](unsigned char Char) { return static_cast<char>(std::tolower(Char)); });
    return Extension;
}

/// Nothing of what can be read only once.
TKvFileBytes ReadBeginning(const std::string& FileName)
{
    const bool CanBeReadAgain = FileName != "-" && !IsReadOnce(FileName);
    return CanBeReadAgain ? ReadFileBytes(FileName, BeginningSize) : TKvFileBytes();
}

std::string NamesOf(std::span<const TSourceKind> Kinds, std::string_view OptionGroup)
{
    std::vector<std::string> Names;
    for (const auto& Kind : Kinds)
        if (OptionGroup.empty() || Kind.OptionGroup == OptionGroup)
            Names.emplace_back(Kind.Name);
    return JoinNames(Names);
}

const TSourceKind& KindNamed(const std::string& Name)
{
    const auto Kinds = SourceKinds();
    const auto Found = std::ranges::find_if(Kinds, [&Name](const TSourceKind& Kind) { return SameText(Kind.Name, Name); });
    if (Found == Kinds.end())
        throw EUsageError("--from: '" + Name + "' is none of " + NamesOf(Kinds, {}));
    return *Found;
}

void CheckOptions(const TSourceKind& Kind, const std::vector<TGivenOption>& Given)
{
    for (const auto& Option : Given)
        if (Option.Group != Kind.OptionGroup)
            throw EUsageError(Option.Name + " has no meaning for a source of kind " + std::string(Kind.Name) +
                              "; it is for " + NamesOf(SourceKinds(), Option.Group));
}

} // namespace

std::span<const TSourceKind> SourceKinds()
{
    static const TSourceKind Kinds[] = {
        {"text", "Text, delimited or of fixed width", {".csv", ".txt", ".tab", ".tsv", ".dat", ".prn", ".asc"},
         TextOptionGroup, nullptr, &MakeTextSource},
        {"html", "Tables of HTML pages", {".html", ".htm", ".xhtml"},
         HtmlOptionGroup, &BeginsLikeHtml, &MakeHtmlSource},
        {"xml", "XML data packets", {".xml"},
         XmlOptionGroup, &BeginsLikeXml, &MakeXmlSource},
        {"xls", "Excel workbooks, Excel 2 to 2003", {".xls", ".xlt", ".xlw"},
         SheetOptionGroup, &BeginsLikeXls, &MakeXlsSource},
        {"wks", "Worksheets of Lotus 1-2-3 and Symphony", {".wks", ".wk1", ".wk2", ".wr1", ".wrk"},
         SheetOptionGroup, &BeginsLikeWks, &MakeWksSource},
        {"quattro", "Worksheets of Quattro Pro for DOS", {".wq1"},
         SheetOptionGroup, &BeginsLikeQuattro, &MakeQuattroSource},
        {"access", "Tables of Access databases", {".mdb", ".mde", ".accdb"},
         TableOptionGroup, &BeginsLikeAccess, &MakeAccessSource},
        {"dbase", "Tables of dBase and FoxPro", {".dbf"},
         {}, &IsDbase, &MakeDbaseSource},
        {"paradox", "Tables of Paradox", {".db"},
         {}, &IsParadox, &MakeParadoxSource},
    };
    return Kinds;
}

/// Bytes that no other kind begins with tell more than the name of the file.
const TSourceKind& KindOfFile(const std::string& FileName)
{
    const auto Kinds = SourceKinds();
    const auto Bytes = ReadBeginning(FileName);
    if (BeginsLikeSqlite(Bytes.View()))
        throw Exception(FileName + " is an SQLite database, into which kvimport imports; it reads none");
    for (const auto& Kind : Kinds)
        if (Kind.Recognizes && Kind.Recognizes(Bytes.View()))
            return Kind;
    const auto Extension = ExtensionOf(FileName);
    for (const auto& Kind : Kinds)
        if (std::ranges::count(Kind.Extensions, Extension) > 0)
            return Kind;
    if (!BeginsLikeText(Bytes.View()))
        throw Exception(FileName + " is no text and of no other kind that is known; kvimport formats lists the kinds, --from "
                        "takes the file for one");
    return Kinds.front();
}

std::unique_ptr<TSource> MakeSource(const TSourceOptions& Options)
{
    if (!Options.Specification.empty())
        return MakeSpecificationSource(Options);
    const auto& Kind = Options.Kind.empty() ? KindOfFile(Options.FileName) : KindNamed(Options.Kind);
    CheckOptions(Kind, Options.Given);
    return Kind.Make(Options);
}

} // namespace kv
