// Catalogue files: the JSON format of docs/catalogue.md, read into a Catalogue, and the embedded
// GIS sample catalogue.
#pragma once

#include <velmor/sql/host/Catalogue.h>
#include <velmor/sql/host/Export.h>

#include <memory>
#include <string>
#include <string_view>

namespace velmor::sql::host {

/// Reads catalogue JSON `text` into `catalogue`, adding to what it holds (so a file may build on
/// the standard SQL set). `source` names the text in messages. Throws CatalogueError, whose
/// message names the source, the JSON path and the fault; on a throw the catalogue may hold a
/// part of the file.
VELMOR_SQL_HOST_API void readCatalogue(Catalogue& catalogue, std::string_view text, const std::string& source);

/// A new catalogue of JSON `text` alone. Throws CatalogueError.
VELMOR_SQL_HOST_API std::shared_ptr<const Catalogue> parseCatalogue(std::string_view text, const std::string& source);

/// A new catalogue of the file at `path`. Throws CatalogueError, also when it cannot be read.
VELMOR_SQL_HOST_API std::shared_ptr<const Catalogue> loadCatalogue(const std::string& path);

/// The JSON text of the embedded GIS sample catalogue (a land registry with geometry as a binary
/// large object; the velmor-sql tool's default).
VELMOR_SQL_HOST_API std::string_view gisSampleCatalogueText();

/// The GIS sample catalogue, read once on first use (thread-safe) and shared afterwards.
VELMOR_SQL_HOST_API std::shared_ptr<const Catalogue> gisSampleCatalogue();

} // namespace velmor::sql::host
