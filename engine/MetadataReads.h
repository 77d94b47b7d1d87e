#pragma once

#include "MetadataValues.h"

#include <QByteArray>
#include <functional>
#include <optional>
#include <vector>

// What files say, read for many files at once: reading a photograph's
// metadata is most of a listing's time, and files are independent, so they
// are shared among as many threads as the machine has cores (eight at the
// most). The calling thread takes its share in small steps and asks `goOn`
// between them, so a window stays live and Stop is heard.
namespace MetadataReads {

using Reader = std::function<Metadata::Values(const QByteArray &path, const Metadata::Request &request)>;

// Each file's values, in the order of `paths`; none when `goOn` said stop.
std::optional<std::vector<Metadata::Values>> readEach(const std::vector<QByteArray> &paths, const Metadata::Request &request,
                                                      const Reader &read, const std::function<bool()> &goOn = {});

} // namespace MetadataReads
