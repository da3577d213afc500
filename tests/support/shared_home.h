// An instance of the program at a list on a real database server.
#pragma once

#include <chrono>
#include <string>
#include <utility>

#include "platform/qt/sql_store.h"
#include "store/schema.h"
#include "support/postgres_server.h"
#include "support/temporary_folder.h"
#include "support/test_database.h"

namespace korvane {

/// A home of its own, and the store that its connection texts open.
struct SharedHome {
    explicit SharedHome(std::string at = PostgresServer::Running().NewDatabase(),
                        std::chrono::milliseconds patience = std::chrono::seconds(15))
        : address(std::move(at)),
          store(KindOfColumn, std::chrono::seconds(1),
                {folder.Path() + "/kvdata2.mdb", address, DatabaseStatements(), patience}) {}

    const TemporaryFolder folder;
    const std::string address;
    QtSqlStore store;
    TestDatabase rows{folder.Path(), store};
};

}  // namespace korvane
