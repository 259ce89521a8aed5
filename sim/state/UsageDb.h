#ifndef QUILLSET_SIM_USAGE_DB_H
#define QUILLSET_SIM_USAGE_DB_H

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

struct sqlite3;

namespace sim {

// The usage database of the simulated watch: usage records and calls to the log provider
// ("usage"), and the journal of launch and terminate requests ("journal"). Only the services
// daemon (quillset-simd) opens it; everything else asks the daemon.
class UsageDb {
public:
    UsageDb();
    ~UsageDb();

    // Opens (and creates) <stateDir>/usage.db.
    bool open(const std::string &stateDir, std::string *error);
    // Opens <stateDir>/usage.db as it is, to list it; fails when there is none.
    bool openExisting(const std::string &stateDir, std::string *error);
    bool isOpen() const { return _db != nullptr; }
    void close();

    bool addRecord(const std::string &uri, const std::string &appId, const std::string &feature,
                   const char *extra, const char *value, std::string *error);
    bool addCall(const std::string &busName, const std::string &path, const std::string &iface,
                 const std::string &method, std::string *error);
    // Returns the new journal id, or 0 on failure. extraJson is a JSON object ("" for none);
    // launchId (for a terminate request) is the journal id of the launch it ends, 0 for none.
    long long addJournal(const std::string &request, const std::string &appId,
                         const std::string &operation, const std::string &extraJson, int launchMode,
                         int result, long long launchId, std::string *error);

    // Rows as JSON objects, oldest first; absent fields are left out, and a journal row's
    // extra data is the object it holds.
    bool listUsage(std::vector<nlohmann::json> *rows, std::string *error);
    bool listJournal(std::vector<nlohmann::json> *rows, std::string *error);

    UsageDb(const UsageDb &) = delete;
    UsageDb &operator=(const UsageDb &) = delete;

private:
    bool _openFile(const std::string &stateDir, int flags, std::string *error);
    bool _exec(const char *sql, std::string *error);
    bool _list(const char *sql, std::vector<nlohmann::json> *rows, std::string *error);

    sqlite3 *_db;
};

}  // namespace sim

#endif
