#pragma once

#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "command/FileDescriptor.h"
#include "forms/tables/RunTables.h"

namespace zeb::exports {

/// A folder of tables that is made under a hidden name, and becomes one of the batches of its directory by a
/// rename once it is whole. What has not become a batch goes, also when its process was killed: the next one
/// in the directory takes it away.
class Batch {
public:
    /// Begins the folder, and each table in it with its head. The directory is made if it is not there.
    /// @throws Failure when that can't be done
    Batch(std::filesystem::path directory, std::span<const forms::Table> tables);
    Batch(const Batch&) = delete;
    Batch& operator=(const Batch&) = delete;
    ~Batch();

    /// Appends to one of its tables.
    /// @throws Failure when it can't be written
    void append(forms::Table table, std::string_view bytes);

    /// Makes it one of the batches. Its name is the moment at which that is done, so that names sort by time,
    /// with some random digits, so that no name comes again.
    /// @return its path
    /// @throws Failure when that can't be done
    std::string putInPlace();

private:
    struct OpenTable {
        command::FileDescriptor file{-1};
        std::string path;
        std::string waiting;  ///< to be written
    };

    void begin();
    void write(OpenTable& table);

    std::filesystem::path directory_;
    std::filesystem::path folder_;      ///< empty once it is in place
    command::FileDescriptor lock_{-1};  ///< on the folder, which nobody takes away meanwhile
    std::vector<OpenTable> tables_;     ///< at the numbers of their tables
};

}  // namespace zeb::exports
