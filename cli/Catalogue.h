// The tool's catalogue options: "--catalog FILE" among a command's leading options, read through
// the host kit; without one, the kit's GIS sample catalogue.
#pragma once

#include <velmor/sql/host/Catalogue.h>

#include <memory>
#include <string>
#include <vector>

namespace velmor::cli {

using sql::host::Catalogue;

/// The catalogue of a subcommand. A "--catalog FILE" (or "--catalog=FILE") among the leading
/// options is taken out of `args` and loaded; without one, the embedded default. On a bad file
/// or a missing FILE the message is on standard error and the result is empty: the caller
/// exits with status 2.
std::shared_ptr<const Catalogue> takeCatalogue(const char* command, std::vector<std::string>& args);

/// The context of format and rename: with "--catalog FILE" among the leading `args` (taken out
/// of them), that catalogue's levels and custom operator texts, the grammar's where it has none;
/// otherwise the grammar's. Empty after a bad catalogue, whose message is then on standard error
/// (the command exits with status 2).
std::shared_ptr<const sql::StringBuildContext> takeStringBuildContext(const char* command,
                                                                      std::vector<std::string>& args);

} // namespace velmor::cli
