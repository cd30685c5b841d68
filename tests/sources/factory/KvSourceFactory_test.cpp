#include "KvSourceFactory.h"

#include <set>

#include "KvException.h"
#include "KvMemoryDataSet.h"
#include "KvProperties.h"
#include "KvTempFolder.h"
#include "KvText.h"
#include "Kvi2ds.h"
#include "KviSourceKinds.h"
#include "KviTableType.h"

namespace kv {

namespace {

using testing::HasSubstr;

struct TKindRow
{
    TTableTypeImport TableType;
    std::string_view ClassName;
};

std::ostream& operator<<(std::ostream& Out, const TKindRow& Row)
{
    return Out << Row.ClassName;
}

class KvSourceFactoryMakes : public testing::TestWithParam<TKindRow>
{
protected:
    std::string Saved(TKvImportBaseComponent& Import)
    {
        Import.SaveSpecification("Orders", Folder / "orders.kvi", false);
        return Folder.Read("orders.kvi");
    }

    const TTempFolder Folder;
};

/// Another value than `Property` has, of its kind. Rows, kinds and characters keep a meaning.
TVariant OtherValue(const TPublishedProperty& Property, const TVariant& Value)
{
    switch (Property.Kind) {
    case pkInteger:     return Value.Integer() == RowLastMax ? 17 : Value.Integer() + 2;
    case pkBoolean:     return !Value.Boolean();
    case pkChar:        return "|";
    case pkEnumeration: return (Value.Integer() + 1) % std::ssize(Property.Names);
    case pkSet:         return ((std::int64_t{1} << Property.Names.size()) - 1) & ~Value.Integer();
    case pkStrings:     return "ID=Field1\r\n NAME = Field 2 \r\n";
    default:            return Value.ToText() + " other";
    }
}

/// Every property of the object, and of the objects in it, away from its default.
void ChangeAll(TPersistent& Object)
{
    for (const auto& Property : Object.PublishedProperties()) {
        if (Property.Set && Property.Stored)
            Property.Set(Object, OtherValue(Property, Property.Get(Object)));
        else if (auto* const Inner = Property.GetObject ? Property.GetObject(Object) : nullptr)
            ChangeAll(*Inner);
    }
}

TEST_P(KvSourceFactoryMakes, TheComponentOfTheKind)
{
    const auto Import = CreateImport(GetParam().TableType);
    EXPECT_EQ(Import->ClassName(), GetParam().ClassName);
    EXPECT_THAT(Saved(*Import),
                HasSubstr("\r\nTableType=" + std::string(TableTypeName(GetParam().TableType)) + "\r\n"));
}

TEST_P(KvSourceFactoryMakes, ComponentsWhoseSettingsSurviveSavingAndLoading)
{
    const auto Import = CreateImport(GetParam().TableType);
    ChangeAll(*Import);
    const auto First = Saved(*Import);
    const auto Loaded = LoadImport(Folder / "orders.kvi");
    EXPECT_EQ(Loaded->ClassName(), GetParam().ClassName);
    std::filesystem::remove(Folder / "orders.kvi");
    EXPECT_EQ(Saved(*Loaded), First);
}

TEST_P(KvSourceFactoryMakes, ComponentsThatAreLoadedAsTheyWereSaved)
{
    static constexpr std::string_view NotSaved[] = {"About", "AnimatedStatus", "Options", "TitleStatus"};
    const auto Import = CreateImport(GetParam().TableType);
    ChangeAll(*Import);
    Saved(*Import);
    const auto Loaded = LoadImport(Folder / "orders.kvi");
    for (const auto& Property : Loaded->PublishedProperties()) {
        if (!Property.Get || std::ranges::count(NotSaved, Property.Name) != 0)
            continue;
        EXPECT_EQ(Property.Get(*Loaded), Property.Get(*Import)) << Property.Name;
    }
}

TEST_P(KvSourceFactoryMakes, ComponentsThatWriteNoExtensionsByThemselves)
{
    EXPECT_THAT(Saved(*CreateImport(GetParam().TableType)), testing::Not(HasSubstr("[Extensions]")));
}

TEST_P(KvSourceFactoryMakes, ComponentsWhoseSettingsBeyondTheUsualOnesHaveKeysOfTheirOwn)
{
    const auto Properties = CreateImport(GetParam().TableType)->PublishedProperties();
    std::multiset<std::string> Keys;
    for (const auto& Property : Properties)
        if (Property.Kind == pkSet && Property.Name.ends_with("Extensions"))
            for (const auto Name : Property.Names)
                Keys.insert(UpperCase(Name.substr(2)));
    for (const auto& Key : Keys) {
        EXPECT_EQ(Keys.count(Key), 1u) << Key;
        EXPECT_EQ(FindProperty(Properties, Key), nullptr) << Key;
    }
}

INSTANTIATE_TEST_SUITE_P(
    , KvSourceFactoryMakes,
    testing::Values(TKindRow{teParadox, "TKvImportFromBDE"}, TKindRow{teDBase, "TKvImportFromBDE"},
                    TKindRow{teText, "TKvImportFromText"}, TKindRow{teXLS, "TKvImportFromXLS"},
                    TKindRow{teWKS, "TKvImportFromWKS"}, TKindRow{teHTML, "TKvImportFromHTML"},
                    TKindRow{teXML, "TKvImportFromXML"}, TKindRow{teQuattro, "TKvImportFromQuattro"},
                    TKindRow{teAccess, "TKvImportFromAccess"}),
    [](const auto& Row) { return std::string(TableTypeName(Row.param.TableType)); });

TEST(KvSourceFactory, AnOwnerOwnsTheComponent)
{
    TComponent Owner;
    const auto Import = CreateImport(teText, &Owner);
    EXPECT_EQ(Import->Owner(), &Owner);
}

TEST(KvSourceFactory, ANumberThatIsNoKindHasNoComponent)
{
    std::string Message;
    try {
        CreateImport(static_cast<TTableTypeImport>(teAccess + 1));
    }
    catch (const Exception& Error) {
        Message = Error.Message;
    }
    EXPECT_EQ(Message, "There is no import of the kind 9");
}

TEST(KvSourceFactory, MakesComponentsByTheNameOfTheirClass)
{
    EXPECT_EQ(ImportClassNames().size(), 9u);
    TComponent Owner;
    for (const auto Name : ImportClassNames()) {
        const auto Import = CreateImport(Name, &Owner);
        EXPECT_EQ(Import->ClassName(), Name);
        EXPECT_EQ(Import->Owner(), &Owner);
    }
    EXPECT_EQ(CreateImport("tkvimportfromdataset")->ClassName(), "TKvImportFromDataSet");
}

TEST(KvSourceFactory, EveryKindIsOfOneOfTheClasses)
{
    for (const auto* const Kind : ImportKinds())
        EXPECT_EQ(std::ranges::count(ImportClassNames(), Kind->Create(nullptr)->ClassName()), 1)
            << Kind->Name;
}

TEST(KvSourceFactory, ANameThatIsNoClassHasNoComponent)
{
    std::string Message;
    try {
        CreateImport("TKvImportBaseComponent");
    }
    catch (const Exception& Error) {
        Message = Error.Message;
    }
    EXPECT_EQ(Message, "There is no import of the class 'TKvImportBaseComponent'");
}

/// A new component of each class, and of each kind, with the properties of its class.
std::vector<std::pair<std::unique_ptr<TKvImportBaseComponent>, TPublishedProperties>> FreshImports()
{
    std::vector<std::pair<std::unique_ptr<TKvImportBaseComponent>, TPublishedProperties>> Result;
    for (const auto Name : ImportClassNames())
        Result.emplace_back(CreateImport(Name), ImportProperties(Name));
    for (const auto* const Kind : ImportKinds()) {
        auto Import = Kind->Create(nullptr);
        auto Properties = ImportProperties(Import->ClassName());
        Result.emplace_back(std::move(Import), std::move(Properties));
    }
    return Result;
}

TEST(KvSourceFactory, TellsTheDefaultsThatComponentsHave)
{
    for (const auto& [Import, Properties] : FreshImports()) {
        ASSERT_EQ(Properties.size(), Import->PublishedProperties().size());
        for (const auto& Property : Properties) {
            EXPECT_EQ(Property.Default.IsEmpty(), !Property.Get) << Property.Name;
            EXPECT_FALSE(IsChanged(Property, *Import)) << Import->ClassName() << "." << Property.Name;
        }
    }
}

TEST(KvSourceFactory, ComponentsGoBackToTheirDefaults)
{
    for (const auto& [Import, Properties] : FreshImports()) {
        ChangeAll(*Import);
        for (const auto& Property : Properties) {
            const bool MayBe =
                !Property.Set || Property.Name.ends_with("Custom"); // what the choice before it says
            EXPECT_TRUE(MayBe || IsChanged(Property, *Import)) << Import->ClassName() << "." << Property.Name;
        }
        for (const auto& Property : Properties)
            ResetToDefault(Property, *Import);
        for (const auto& Property : Properties)
            EXPECT_FALSE(IsChanged(Property, *Import)) << Import->ClassName() << "." << Property.Name;
    }
}

TEST(KvSourceFactory, ComponentsTakeTheSettingsOfTheirLikes)
{
    for (const auto& [Import, Properties] : FreshImports()) {
        ChangeAll(*Import);
        const auto Taker = CreateImport(Import->ClassName());
        Taker->TakeSettings(*Import);
        for (const auto& Property : Properties) {
            const auto Value = [&](const TPersistent& Of) {
                return Property.Get ? Property.Get(Of) : TVariant();
            };
            EXPECT_EQ(Value(*Taker), Value(*Import)) << Import->ClassName() << "." << Property.Name;
        }
        EXPECT_EQ(Taker->DataFormats.BooleanTrue, Import->DataFormats.BooleanTrue);
    }
}

TEST(KvSourceFactory, ACopyOfADatasetTakesItsSource)
{
    TMemoryDataSet Source;
    TKvImportFromDataSet Import, Taker;
    Import.SetSourceDataset(&Source);
    Taker.TakeSettings(Import);
    EXPECT_EQ(Taker.GetSourceDataset(), &Source);
}

TEST(KvSourceFactory, ComponentsOfAllClassesTakeWhatIsCommon)
{
    for (const auto& [Import, Properties] : FreshImports())
        for (const auto Name : ImportClassNames()) {
            ChangeAll(*Import);
            const auto Taker = CreateImport(Name);
            Taker->TakeSettings(*Import);
            EXPECT_EQ(Taker->Mappings(), Import->Mappings());
            EXPECT_EQ(Taker->RunExtensions, Import->RunExtensions);
            EXPECT_EQ(Taker->TitleStatus, Import->TitleStatus);
        }
}

TEST(KvSourceFactory, SavingOverTheFileOfAnotherKindLeavesNothingForeign)
{
    const TTempFolder Folder;
    for (const auto* const First : ImportKinds())
        for (const auto* const Second : ImportKinds()) {
            const auto Saved = Folder / "orders.kvi";
            const auto Before = First->Create(nullptr), After = Second->Create(nullptr);
            ChangeAll(*Before);
            Before->SaveSpecification("Orders", Saved, false);
            After->SaveSpecification("Orders", Saved, false);
            const auto Loaded = LoadImport(Saved);
            EXPECT_EQ(Loaded->ClassName(), After->ClassName());
            EXPECT_EQ(Folder.Read("orders.kvi").find("[Extensions]") == std::string::npos, First != Second)
                << First->Name << " " << Second->Name;
            std::filesystem::remove(Saved);
        }
}

TEST(KvSourceFactory, ASpecificationMustNameItsKind)
{
    const TTempFolder Folder;
    const auto MessageFor = [&](std::string_view Text) -> std::string {
        try {
            LoadImport(Folder.Write("orders.kvi", Text));
        }
        catch (const EConvertError& Error) {
            return Error.Message;
        }
        return {};
    };
    const auto Place = "Cannot read file \"" + Folder / "orders.kvi" + "\": [Common] TableType: ";
    EXPECT_EQ(MessageFor("hello"), Place + "it does not say what kind of source it is about");
    EXPECT_EQ(MessageFor("[Common]\nTableType=Oracle\n"), Place + "'Oracle' is no kind of source");
    EXPECT_EQ(MessageFor("[Common]\nTableType=text\n"), "");
}

TEST(KvSourceFactory, TheSettingsOfADatasetCopySurviveToo)
{
    const TTempFolder Folder;
    TKvImportFromDataSet Import;
    ChangeAll(Import);
    Import.SaveSpecification("Orders", Folder / "first.kvi", false);
    TKvImportFromDataSet Loaded;
    Loaded.LoadSpecification(Folder / "first.kvi");
    Loaded.SaveSpecification("Orders", Folder / "second.kvi", false);
    EXPECT_EQ(Folder.Read("second.kvi"), Folder.Read("first.kvi"));
    EXPECT_EQ(Loaded.Mappings(), Import.Mappings());
}

} // namespace

} // namespace kv
