#pragma once

#include <string>

#include "viewer/SavedObjects.h"

namespace zeb::viewer {

/// Looks at the names of all objects in a log before a reader makes files of them in a directory. A name must
/// not lead out of the directory: it has to be relative, without ".." in it, and the directories in it must
/// not be links to outside. Its last "." may not stand in a directory's name, for the number of a taken name
/// goes there, and would lead to another directory. Nor may it stand for a file that can't be made there,
/// since readers pass over that without a word. Messages of all levels count. A damaged log is looked at up
/// to its first damage, for no report is made of it. The log must not change from here to the end of the
/// report, nor the directory's links.
/// @param directory from the root, without links
/// @return the objects, not yet looked at
/// @throws Failure that names the chunk, the object and what is wrong with it; std::bad_alloc
SavedObjects checkObjectNames(const std::string& logPath, const std::string& directory);

}  // namespace zeb::viewer
