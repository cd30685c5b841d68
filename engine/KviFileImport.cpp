#include "KviFileImport.h"

#include "KvPublish.h"

namespace kv {

TPublishedProperties TKvImportFromFile::PublishedProperties() const
{
    using T = TKvImportFromFile;
    return PublishAfter(TKvImportBaseComponent::PublishedProperties(),
                        {Publish("SourceFileName", &T::SourceFileName),
                         Publish("RowFirst", &T::RowFirst),
                         Publish("RowLast", &T::RowLast)});
}

bool TKvImportFromFile::NotDefined(std::string& PropName)
{
    if (TKvImportBaseComponent::NotDefined(PropName))
        return true;
    if (!SourceFileName.empty())
        return false;
    PropName = "SourceFileName";
    return true;
}

std::unique_ptr<TKvImportFromFile> AsFileImport(std::unique_ptr<TKvImportBaseComponent> Import)
{
    auto& File = dynamic_cast<TKvImportFromFile&>(*Import);
    Import.release();
    return std::unique_ptr<TKvImportFromFile>(&File);
}

} // namespace kv
