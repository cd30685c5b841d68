// KvModelFile - writes the records of a job as a file of one kind, for the kind's own reader.
#pragma once

#include <string>
#include <vector>

#include "KvModelTable.h"

namespace kv {

enum TModelFileKind { mfText, mfPacket, mfPage, mfDbase, mfWorkbook };

constexpr int ModelFileKinds = mfWorkbook + 1;

/// As it can be told from the content: "orders.csv".
const char* NameOf(TModelFileKind Kind);

/// All values are texts, in dBase tables and workbooks of ASCII alone.
std::string BytesOf(TModelFileKind Kind, const std::vector<std::string>& Names,
                    const std::vector<TModelRecord>& Records);

} // namespace kv
