#include "UsageDb.h"

#include <sqlite3.h>

#include <chrono>

namespace sim {

namespace {

const char *const kSchema =
    "CREATE TABLE IF NOT EXISTS usage("
    " id INTEGER PRIMARY KEY AUTOINCREMENT, time REAL NOT NULL, kind TEXT NOT NULL,"
    " uri TEXT, app_id TEXT, feature TEXT, extra TEXT, value TEXT,"
    " bus_name TEXT, path TEXT, interface TEXT, method TEXT);"
    "CREATE TABLE IF NOT EXISTS journal("
    " id INTEGER PRIMARY KEY AUTOINCREMENT, time REAL NOT NULL, request TEXT NOT NULL,"
    " app_id TEXT, operation TEXT, extra_data TEXT, launch_mode INTEGER,"
    " result INTEGER NOT NULL, launch_id INTEGER);";

double now() {
    using namespace std::chrono;
    return duration_cast<microseconds>(system_clock::now().time_since_epoch()).count() / 1e6;
}

void bindText(sqlite3_stmt *stmt, int index, const char *text) {
    if (text)
        sqlite3_bind_text(stmt, index, text, -1, SQLITE_TRANSIENT);
    else
        sqlite3_bind_null(stmt, index);
}

// Runs one statement with its parameters bound by the caller.
bool step(sqlite3 *db, sqlite3_stmt *stmt, std::string *error) {
    int rc = sqlite3_step(stmt);
    sqlite3_finalize(stmt);
    if (rc != SQLITE_DONE) {
        if (error)
            *error = std::string("sqlite3_step: ") + sqlite3_errmsg(db);
        return false;
    }
    return true;
}

}  // namespace

UsageDb::UsageDb() : _db(nullptr) {}

UsageDb::~UsageDb() {
    close();
}

void UsageDb::close() {
    if (_db)
        sqlite3_close(_db);
    _db = nullptr;
}

bool UsageDb::_openFile(const std::string &stateDir, int flags, std::string *error) {
    close();
    std::string path = stateDir + "/usage.db";
    if (sqlite3_open_v2(path.c_str(), &_db, flags, nullptr) == SQLITE_OK)
        return true;
    if (error)
        *error = "sqlite3_open(" + path + "): " + (_db ? sqlite3_errmsg(_db) : "out of memory");
    sqlite3_close(_db);
    _db = nullptr;
    return false;
}

bool UsageDb::open(const std::string &stateDir, std::string *error) {
    // The services daemon is the only process that opens the database, so nothing waits for
    // another writer or races another to set it up.
    if (!_openFile(stateDir, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, error))
        return false;
    // With the write-ahead log, NORMAL keeps the database whole and spares every row a wait for
    // the disk (a launch request is answered once its journal row is written); the last rows
    // before a power cut may be lost, which a simulated watch can afford.
    if (_exec("PRAGMA journal_mode=WAL;", error) && _exec("PRAGMA synchronous=NORMAL;", error) &&
        _exec(kSchema, error))
        return true;
    close();
    return false;
}

bool UsageDb::openExisting(const std::string &stateDir, std::string *error) {
    return _openFile(stateDir, SQLITE_OPEN_READWRITE, error);
}

bool UsageDb::_exec(const char *sql, std::string *error) {
    char *message = nullptr;
    if (sqlite3_exec(_db, sql, nullptr, nullptr, &message) != SQLITE_OK) {
        if (error)
            *error = std::string("sqlite3_exec: ") + (message ? message : "unknown error");
        sqlite3_free(message);
        return false;
    }
    return true;
}

bool UsageDb::addRecord(const std::string &uri, const std::string &appId,
                        const std::string &feature, const char *extra, const char *value,
                        std::string *error) {
    sqlite3_stmt *stmt = nullptr;
    if (!_db || sqlite3_prepare_v2(_db,
                                   "INSERT INTO usage(time, kind, uri, app_id, feature, extra, "
                                   "value) VALUES(?, 'record', ?, ?, ?, ?, ?)",
                                   -1, &stmt, nullptr) != SQLITE_OK) {
        if (error)
            *error = _db ? sqlite3_errmsg(_db) : "usage database is not open";
        return false;
    }
    sqlite3_bind_double(stmt, 1, now());
    bindText(stmt, 2, uri.c_str());
    bindText(stmt, 3, appId.c_str());
    bindText(stmt, 4, feature.c_str());
    bindText(stmt, 5, extra);
    bindText(stmt, 6, value);
    return step(_db, stmt, error);
}

bool UsageDb::addCall(const std::string &busName, const std::string &path, const std::string &iface,
                      const std::string &method, std::string *error) {
    sqlite3_stmt *stmt = nullptr;
    if (!_db || sqlite3_prepare_v2(_db,
                                   "INSERT INTO usage(time, kind, bus_name, path, interface, "
                                   "method) VALUES(?, 'call', ?, ?, ?, ?)",
                                   -1, &stmt, nullptr) != SQLITE_OK) {
        if (error)
            *error = _db ? sqlite3_errmsg(_db) : "usage database is not open";
        return false;
    }
    sqlite3_bind_double(stmt, 1, now());
    bindText(stmt, 2, busName.c_str());
    bindText(stmt, 3, path.c_str());
    bindText(stmt, 4, iface.c_str());
    bindText(stmt, 5, method.c_str());
    return step(_db, stmt, error);
}

long long UsageDb::addJournal(const std::string &request, const std::string &appId,
                              const std::string &operation, const std::string &extraJson,
                              int launchMode, int result, long long launchId, std::string *error) {
    sqlite3_stmt *stmt = nullptr;
    if (!_db || sqlite3_prepare_v2(_db,
                                   "INSERT INTO journal(time, request, app_id, operation, "
                                   "extra_data, launch_mode, result, launch_id) "
                                   "VALUES(?, ?, ?, ?, ?, ?, ?, ?)",
                                   -1, &stmt, nullptr) != SQLITE_OK) {
        if (error)
            *error = _db ? sqlite3_errmsg(_db) : "usage database is not open";
        return 0;
    }
    sqlite3_bind_double(stmt, 1, now());
    bindText(stmt, 2, request.c_str());
    bindText(stmt, 3, appId.empty() ? nullptr : appId.c_str());
    bindText(stmt, 4, operation.empty() ? nullptr : operation.c_str());
    bindText(stmt, 5, extraJson.empty() ? nullptr : extraJson.c_str());
    sqlite3_bind_int(stmt, 6, launchMode);
    sqlite3_bind_int(stmt, 7, result);
    if (launchId)
        sqlite3_bind_int64(stmt, 8, launchId);
    else
        sqlite3_bind_null(stmt, 8);
    if (!step(_db, stmt, error))
        return 0;
    return sqlite3_last_insert_rowid(_db);
}

bool UsageDb::_list(const char *sql, std::vector<nlohmann::json> *rows, std::string *error) {
    sqlite3_stmt *stmt = nullptr;
    if (!_db || sqlite3_prepare_v2(_db, sql, -1, &stmt, nullptr) != SQLITE_OK) {
        if (error)
            *error = _db ? sqlite3_errmsg(_db) : "usage database is not open";
        return false;
    }
    int rc;
    while ((rc = sqlite3_step(stmt)) == SQLITE_ROW) {
        nlohmann::json row = nlohmann::json::object();
        for (int i = 0; i < sqlite3_column_count(stmt); ++i) {
            const char *name = sqlite3_column_name(stmt, i);
            switch (sqlite3_column_type(stmt, i)) {
                case SQLITE_NULL:
                    break;  // absent fields stay out of the row
                case SQLITE_INTEGER:
                    row[name] = sqlite3_column_int64(stmt, i);
                    break;
                case SQLITE_FLOAT:
                    row[name] = sqlite3_column_double(stmt, i);
                    break;
                default:
                    row[name] = reinterpret_cast<const char *>(sqlite3_column_text(stmt, i));
            }
        }
        rows->push_back(row);
    }
    sqlite3_finalize(stmt);
    if (rc != SQLITE_DONE) {
        if (error)
            *error = sqlite3_errmsg(_db);
        return false;
    }
    return true;
}

bool UsageDb::listUsage(std::vector<nlohmann::json> *rows, std::string *error) {
    return _list("SELECT * FROM usage ORDER BY id", rows, error);
}

bool UsageDb::listJournal(std::vector<nlohmann::json> *rows, std::string *error) {
    size_t first = rows->size();
    if (!_list("SELECT * FROM journal ORDER BY id", rows, error))
        return false;
    // Extra data is stored as JSON text; it is listed as the object it is.
    for (size_t i = first; i < rows->size(); ++i) {
        nlohmann::json &row = (*rows)[i];
        if (row.contains("extra_data") && row["extra_data"].is_string()) {
            nlohmann::json extra =
                nlohmann::json::parse(row["extra_data"].get<std::string>(), nullptr, false);
            if (!extra.is_discarded())
                row["extra_data"] = extra;
        }
    }
    return true;
}

}  // namespace sim
