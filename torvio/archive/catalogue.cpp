#include "torvio/archive/catalogue.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "torvio/archive/host_files.h"

#if defined(TORVIO_WITH_SQLITE)
#include <sqlite3.h>

#include <chrono>
#include <mutex>
#include <random>
#include <thread>
#include <utility>

#include "torvio/values/text_encoding.h"
#endif

namespace oldtorvio::archive {
namespace {

namespace fs = std::filesystem;

bool isSeparator(char c) { return c == '/' || (fs::path::preferred_separator == '\\' && c == '\\'); }

}  // namespace

std::string cataloguePath(const std::string& path) {
  std::string full = path;
  if (!fs::path(path).is_absolute()) {
    std::error_code error;
    full = fs::current_path(error).string() + "/" + path;
  }
  // ".." stays: the folder before it may be a link.
  std::string kept;
  for (std::size_t at = 0; at < full.size();) {
    const bool isStart = at == 0 || isSeparator(full[at - 1]);
    if (at > 1 && isStart && isSeparator(full[at])) {
      ++at;
    } else if (isStart && full[at] == '.' && (at + 1 == full.size() || isSeparator(full[at + 1]))) {
      at += 2;
    } else {
      kept += full[at++];
    }
  }
  return kept;
}

std::string catalogueSettings(std::string_view torvioVersion, const JudgeOptions& judge, std::string_view encoding) {
  std::string text = "torvio ";
  text.append(torvioVersion).append("; encoding ").append(encoding);
  if (judge.kind) text.append("; kind ").append(frame::infoOf(*judge.kind).name);
  for (const ExtensionHint& hint : judge.extensions)
    text.append("; ext ").append(frame::infoOf(hint.kind).name).append("=").append(hint.extension);
  return text;
}

std::vector<std::string> completeFolders(const std::vector<std::string>& paths,
                                         const std::vector<std::string>& unread) {
  std::vector<std::string> complete;
  for (const std::string& path : paths) {
    if (!isFolder(path)) continue;
    const std::string full = cataloguePath(path);
    const bool isComplete = std::none_of(
        unread.begin(), unread.end(), [&](const std::string& inner) { return cataloguePath(inner).starts_with(full); });
    if (isComplete) complete.push_back(path);
  }
  return complete;
}

#if defined(TORVIO_WITH_SQLITE)

namespace {

// "Torv" in the header of the file.
constexpr int kApplicationId = 0x546F7276;
constexpr int kSchemaVersion = 1;

constexpr const char* kSchema = R"(
CREATE TABLE run (
  id INTEGER PRIMARY KEY,
  started TEXT NOT NULL,
  finished TEXT,
  settings TEXT NOT NULL
);
CREATE TABLE file (
  id INTEGER PRIMARY KEY,
  path NOT NULL UNIQUE,
  size INTEGER,
  modified INTEGER,
  kind TEXT,
  version INTEGER,
  verdict TEXT NOT NULL,
  error TEXT,
  status INTEGER,
  walked INTEGER,
  fault_offset INTEGER,
  fault_field TEXT,
  fault_reason TEXT,
  is_tolerated INTEGER NOT NULL,
  name TEXT,
  assembly TEXT,
  width REAL,
  height REAL,
  thickness REAL,
  material TEXT,
  material_group TEXT,
  material_type TEXT,
  machine TEXT,
  work_order TEXT,
  part_count INTEGER,
  placement_count INTEGER,
  shape_count INTEGER,
  station_count INTEGER,
  tool_count INTEGER,
  warning_count INTEGER NOT NULL,
  examined_in INTEGER NOT NULL REFERENCES run,
  seen_in INTEGER NOT NULL REFERENCES run
);
CREATE TABLE part (
  file INTEGER NOT NULL REFERENCES file ON DELETE CASCADE,
  position INTEGER NOT NULL,
  name TEXT NOT NULL,
  path TEXT NOT NULL,
  width REAL,
  height REAL,
  thickness REAL,
  material TEXT NOT NULL,
  quantity INTEGER NOT NULL,
  work_order TEXT NOT NULL,
  PRIMARY KEY (file, position)
) WITHOUT ROWID;
CREATE TABLE tool (
  file INTEGER NOT NULL REFERENCES file ON DELETE CASCADE,
  position INTEGER NOT NULL,
  list TEXT NOT NULL,
  number INTEGER NOT NULL,
  shape_code INTEGER NOT NULL,
  dimension1 REAL,
  dimension2 REAL,
  dimension3 REAL,
  orientation REAL,
  special_tool TEXT,
  PRIMARY KEY (file, position)
) WITHOUT ROWID;
CREATE TABLE warning (
  file INTEGER NOT NULL REFERENCES file ON DELETE CASCADE,
  position INTEGER NOT NULL,
  code TEXT NOT NULL,
  field TEXT NOT NULL,
  text TEXT NOT NULL,
  PRIMARY KEY (file, position)
) WITHOUT ROWID;
)";

std::string nowAsText() {
  const auto now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
  char text[32] = "";
  std::tm utc{};
#if defined(_WIN32)
  (void)gmtime_s(&utc, &now);
#else
  (void)gmtime_r(&now, &utc);
#endif
  (void)std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &utc);
  return text;
}

std::optional<Verdict> verdictNamed(std::string_view name) {
  for (int i = 0; i < kVerdicts; ++i)
    if (nameOf(static_cast<Verdict>(i)) == name) return static_cast<Verdict>(i);
  return std::nullopt;
}

std::optional<explain::FileKind> kindNamed(std::string_view name) {
  for (const frame::FileKindInfo& info : frame::kFileKinds)
    if (info.name == name) return info.kind;
  return std::nullopt;
}

}  // namespace

class Catalogue::Database {
 public:
  Database(const std::string& path, const std::string& settings, std::chrono::milliseconds longestWait)
      : path_(path), ownPath_(cataloguePath(path)) {
    // Another process may create the catalogue, or end its own run, at the same time. SQLite itself does not always
    // wait for that, and what was read before may be out of date.
    const auto end = Clock::now() + longestWait;
    for (auto pause = kShortestPause;; pause = std::min(pause * 2, kLongestPause)) {
      try {
        open();
        prepare();
        beginRun(settings);
        setIdentities();
        break;
      } catch (const DatabaseIsBusy&) {
        close();
        if (Clock::now() > end) throw;
      } catch (...) {
        close();
        throw;
      }
      std::this_thread::sleep_for(pause);
    }
    (void)sqlite3_busy_timeout(database_, static_cast<int>(longestWait.count()));
  }
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;
  ~Database() {
    try {
      writePending();
    } catch (const CatalogueError&) {
      // The run has already failed for another reason.
    }
    close();
  }

  std::optional<FileResult> find(const FileResult& file) {
    const std::lock_guard lock(mutex_);
    Use query(*this, find_);
    query.bindPath(cataloguePath(file.path)).bind(static_cast<std::int64_t>(*file.size)).bind(*file.modified);
    query.bind(run_);
    if (!query.step()) return std::nullopt;
    FileResult found;
    const std::int64_t id = query.integer(0);
    const auto verdict = verdictNamed(query.text(1));
    if (!verdict) return std::nullopt;
    found.verdict = *verdict;
    found.kind = kindNamed(query.text(2));
    if (!query.isNull(3)) found.report.version = static_cast<int>(query.integer(3));
    found.report.status = query.integer(4);
    found.report.walked = static_cast<std::uint64_t>(query.integer(5));
    found.report.size = *file.size;
    if (!query.isNull(6)) {
      explain::Fault fault{static_cast<std::uint64_t>(query.integer(6)), query.text(7), query.text(8)};
      (query.integer(9) != 0 ? found.report.tolerated : found.report.fault) = std::move(fault);
    }
    found.size = file.size;
    found.modified = file.modified;
    if (query.integer(10) > 0) {
      Use warnings(*this, findWarnings_);
      warnings.bind(id);
      while (warnings.step()) found.warnings.push_back({warnings.text(0), warnings.text(1), warnings.text(2)});
    }
    return found;
  }

  bool isOwnFile(const std::string& path) const {
    const std::string own = cataloguePath(path);
    const auto hasName = [&](const char* suffix) { return own == ownPath_ + suffix; };
    if (std::any_of(kSuffixes.begin(), kSuffixes.end(), hasName)) return true;
    const auto identity = identityOf(path);
    return identity && std::find(identities_.begin(), identities_.end(), *identity) != identities_.end();
  }

  // Results are collected and written together: other processes can write between two transactions, but not during one.
  void add(FileResult result) {
    const std::lock_guard lock(mutex_);
    if (pending_.empty()) firstPending_ = Clock::now();
    pendingRows_ += 1 + result.warnings.size();
    if (result.facts) pendingRows_ += result.facts->parts.size() + result.facts->tools.size();
    pending_.push_back(std::move(result));
    constexpr std::size_t kMostFiles = 2000, kMostRows = 20'000;
    if (pending_.size() >= kMostFiles || pendingRows_ >= kMostRows ||
        Clock::now() - firstPending_ > std::chrono::seconds(1))
      writePending();
  }

  void finish(const std::vector<std::string>& completeFolders) {
    const std::lock_guard lock(mutex_);
    writePending();
    begin();
    for (const std::string& folder : completeFolders) {
      std::string first = cataloguePath(folder);
      if (first.empty() || !isSeparator(first.back())) first += '/';
      std::string last = first;
      ++last.back();  // the first name that is not in the folder
      // Names that are not texts are blobs, which are ordered separately.
      for (const bool areBlobs : {false, true}) {
        Use remove(*this, removeUnseen_);
        remove.bindName(first, areBlobs).bindName(last, areBlobs).bind(run_);
        (void)remove.step();
      }
    }
    {
      Use update(*this, finishRun_);
      const std::string now = nowAsText();
      update.bind(now).bind(run_);
      (void)update.step();
    }
    commit();
    close();
    leaveOneFile();
  }

 private:
  using Statement = sqlite3_stmt*;
  using Clock = std::chrono::steady_clock;
  static constexpr std::chrono::milliseconds kShortestPause{5}, kLongestPause{100};
  // Of the files that SQLite keeps beside a database.
  static constexpr std::array<const char*, 4> kSuffixes{"", "-wal", "-shm", "-journal"};

  // Another process had the database locked for as long as this one waits.
  class DatabaseIsBusy : public CatalogueError {
   public:
    using CatalogueError::CatalogueError;
  };

  [[noreturn]] void fail() const {
    const int code = database_ != nullptr ? sqlite3_errcode(database_) : SQLITE_NOMEM;
    if (code == SQLITE_BUSY || code == SQLITE_PROTOCOL) throw DatabaseIsBusy(path_ + ": is locked by another process");
    throw CatalogueError(path_ + ": " + (database_ != nullptr ? sqlite3_errmsg(database_) : "not enough memory"));
  }
  [[noreturn]] void fail(const std::string& reason) const { throw CatalogueError(path_ + ": " + reason); }

  // One use of a prepared statement: values are bound and columns read in order.
  class Use {
   public:
    Use(const Database& database, Statement statement) : database_(database), statement_(statement) {}
    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;
    // An error has been reported by step().
    ~Use() {
      (void)sqlite3_reset(statement_);
      (void)sqlite3_clear_bindings(statement_);
    }

    Use& bind(std::int64_t value) { return checked(sqlite3_bind_int64(statement_, ++bound_, value)); }
    // A value that is not a number becomes NULL.
    Use& bind(double value) { return checked(sqlite3_bind_double(statement_, ++bound_, value)); }
    // The text must live until step().
    Use& bind(std::string_view text) {
      return checked(sqlite3_bind_text64(statement_, ++bound_, text.data() != nullptr ? text.data() : "", text.size(),
                                         SQLITE_STATIC, SQLITE_UTF8));
    }
    Use& bind(const std::string& text) { return bind(std::string_view(text)); }
    template <class T>
    Use& bind(const std::optional<T>& value) {
      if (value) return bind(*value);
      return bindNull();
    }
    Use& bindNull() { return checked(sqlite3_bind_null(statement_, ++bound_)); }
    // A name is a text if it is UTF-8, otherwise a blob of its bytes, so that no two files have the same.
    Use& bindName(std::string_view name, bool isBlob) {
      return checked(
          isBlob ? sqlite3_bind_blob64(statement_, ++bound_, name.data(), name.size(), SQLITE_TRANSIENT)
                 : sqlite3_bind_text64(statement_, ++bound_, name.data(), name.size(), SQLITE_TRANSIENT, SQLITE_UTF8));
    }
    Use& bindPath(const std::string& path) { return bindName(path, values::fileNameAsUtf8(path) != path); }

    // False after the last row.
    bool step() {
      const int result = sqlite3_step(statement_);
      if (result != SQLITE_ROW && result != SQLITE_DONE) database_.fail();
      return result == SQLITE_ROW;
    }
    bool isNull(int column) const { return sqlite3_column_type(statement_, column) == SQLITE_NULL; }
    std::int64_t integer(int column) const { return sqlite3_column_int64(statement_, column); }
    std::string text(int column) const {
      const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
      return text != nullptr ? std::string(text, static_cast<std::size_t>(sqlite3_column_bytes(statement_, column)))
                             : std::string();
    }

   private:
    Use& checked(int result) {
      if (result != SQLITE_OK) database_.fail();
      return *this;
    }

    const Database& database_;
    Statement statement_;
    int bound_ = 0;
  };

  void open() {
    // A path that begins with "file:" is not a URI here.
    constexpr int kFlags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_FULLMUTEX;
    if (sqlite3_open_v2(ownPath_.c_str(), &database_, kFlags, nullptr) != SQLITE_OK) fail();
    // Short, because the constructor tries again.
    (void)sqlite3_busy_timeout(database_, 500);
    // In one transaction: another process may create the catalogue in between.
    execute("BEGIN");
    const std::int64_t application = pragma("application_id"), version = pragma("user_version");
    const bool isEmpty = number("SELECT count(*) FROM sqlite_master") == 0;
    execute("COMMIT");
    if (application != kApplicationId && (application != 0 || version != 0 || !isEmpty))
      fail("is a database, but not a catalogue");
    if (application == kApplicationId && version != kSchemaVersion) fail("is a catalogue of another version of torvio");
    execute("PRAGMA journal_mode = WAL");
    execute("PRAGMA synchronous = NORMAL");
    execute("PRAGMA foreign_keys = ON");
    if (application == kApplicationId) return;
    execute("BEGIN IMMEDIATE");
    if (number("SELECT count(*) FROM sqlite_master") == 0) {
      execute(kSchema);
      execute("PRAGMA application_id = " + std::to_string(kApplicationId));
      execute("PRAGMA user_version = " + std::to_string(kSchemaVersion));
    }
    execute("COMMIT");
  }

  // Without its other files a database can be read and copied anywhere. It keeps them while another process uses it,
  // which then removes them at its own end. Two that end at the same time block each other: both try again.
  void leaveOneFile() {
    std::minstd_rand random(std::random_device{}());
    for (int i = 0; i < 10; ++i) {
      int result = sqlite3_open_v2(ownPath_.c_str(), &database_, SQLITE_OPEN_READWRITE, nullptr);
      if (result == SQLITE_OK)
        result = sqlite3_exec(database_, "PRAGMA journal_mode = DELETE", nullptr, nullptr, nullptr);
      close();
      if (result != SQLITE_BUSY) return;
      std::this_thread::sleep_for(std::chrono::milliseconds(random() % 20));
    }
  }

  // The files stay the same ones while the database is open. If the path is a link, SQLite keeps them beside its target.
  void setIdentities() {
    const std::string path = sqlite3_db_filename(database_, "main");
    for (const char* const suffix : kSuffixes)
      if (const auto identity = identityOf(path + suffix)) identities_.push_back(*identity);
  }

  void prepare() {
    find_ = prepared(
        "SELECT file.id, verdict, kind, version, status, walked, fault_offset, fault_field, fault_reason, is_tolerated,"
        " warning_count FROM file JOIN run ON run.id = examined_in"
        " WHERE path = ? AND size = ? AND modified = ? AND error IS NULL"
        " AND settings = (SELECT settings FROM run WHERE id = ?)");
    findWarnings_ = prepared("SELECT code, field, text FROM warning WHERE file = ? ORDER BY position");
    // A later run that is still in progress may have seen the file before this one.
    seen_ = prepared("UPDATE file SET seen_in = max(seen_in, ?) WHERE path = ?");
    findSeen_ = prepared("SELECT seen_in FROM file WHERE path = ?");
    remove_ = prepared("DELETE FROM file WHERE path = ?");
    insert_ = prepared(
        "INSERT INTO file (path, size, modified, kind, version, verdict, error, status, walked, fault_offset,"
        " fault_field, fault_reason, is_tolerated, name, assembly, width, height, thickness, material, material_group,"
        " material_type, machine, work_order, part_count, placement_count, shape_count, station_count, tool_count,"
        " warning_count, examined_in, seen_in)"
        " VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    insertPart_ = prepared("INSERT INTO part VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    insertTool_ = prepared("INSERT INTO tool VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    insertWarning_ = prepared("INSERT INTO warning VALUES (?, ?, ?, ?, ?)");
    removeUnseen_ = prepared("DELETE FROM file WHERE path >= ? AND path < ? AND seen_in < ?");
    finishRun_ = prepared("UPDATE run SET finished = ? WHERE id = ?");
  }

  void beginRun(const std::string& settings) {
    begin();
    Statement insert = prepared("INSERT INTO run (started, settings) VALUES (?, ?)");
    const std::string now = nowAsText();
    {
      Use use(*this, insert);
      use.bind(now).bind(settings);
      (void)use.step();
    }
    run_ = sqlite3_last_insert_rowid(database_);
    commit();
  }

  void writePending() {
    if (pending_.empty()) return;
    const std::vector<FileResult> results = std::exchange(pending_, {});
    pendingRows_ = 0;
    begin();
    for (const FileResult& result : results) result.isKnown ? markSeen(result) : replace(result);
    commit();
  }

  void markSeen(const FileResult& result) {
    Use update(*this, seen_);
    update.bind(run_).bindPath(cataloguePath(result.path));
    (void)update.step();
  }

  void replace(const FileResult& result) {
    const std::string path = cataloguePath(result.path);
    std::int64_t seen = run_;
    {
      Use find(*this, findSeen_);
      find.bindPath(path);
      if (find.step()) seen = std::max(seen, find.integer(0));
    }
    {
      Use remove(*this, remove_);
      remove.bindPath(path);
      (void)remove.step();
    }
    insertFile(path, result, seen);
    const std::int64_t id = sqlite3_last_insert_rowid(database_);
    if (result.facts) {
      std::int64_t position = 0;
      for (const PartFacts& part : result.facts->parts) {
        Use insert(*this, insertPart_);
        insert.bind(id).bind(position++).bind(part.name).bind(part.path).bind(part.width).bind(part.height);
        insert.bind(part.thickness).bind(part.material).bind(part.quantity).bind(part.workOrder);
        (void)insert.step();
      }
      position = 0;
      for (const ToolFacts& tool : result.facts->tools) {
        Use insert(*this, insertTool_);
        insert.bind(id).bind(position++).bind(tool.list).bind(tool.number).bind(tool.shapeCode);
        insert.bind(tool.dimension1).bind(tool.dimension2).bind(tool.dimension3).bind(tool.orientation);
        tool.specialTool.empty() ? insert.bindNull() : insert.bind(tool.specialTool);
        (void)insert.step();
      }
    }
    std::int64_t position = 0;
    for (const Warning& warning : result.warnings) {
      Use insert(*this, insertWarning_);
      insert.bind(id).bind(position++).bind(warning.code).bind(warning.field).bind(warning.text);
      (void)insert.step();
    }
  }

  void insertFile(const std::string& path, const FileResult& result, std::int64_t seen) {
    static const Facts kNone;
    const Facts& facts = result.facts ? *result.facts : kNone;
    const explain::FileReport& report = result.report;
    const bool isRead = result.error.empty();
    const auto& fault = report.fault ? report.fault : report.tolerated;
    Use insert(*this, insert_);
    insert.bindPath(path);
    if (result.size)
      insert.bind(static_cast<std::int64_t>(*result.size));
    else if (isRead)
      insert.bind(static_cast<std::int64_t>(report.size));
    else
      insert.bindNull();
    // Without a time the file is read again, as one must be whose size is not that of its contents, such as in /proc.
    isRead&& result.size == report.size ? insert.bind(result.modified) : insert.bindNull();
    result.kind ? insert.bind(frame::infoOf(*result.kind).name) : insert.bindNull();
    report.version ? insert.bind(std::int64_t{*report.version}) : insert.bindNull();
    insert.bind(nameOf(result.verdict));
    isRead ? insert.bindNull() : insert.bind(result.error);
    isRead ? insert.bind(report.status) : insert.bindNull();
    isRead ? insert.bind(static_cast<std::int64_t>(report.walked)) : insert.bindNull();
    if (fault)
      insert.bind(static_cast<std::int64_t>(fault->offset)).bind(fault->path).bind(fault->reason);
    else
      insert.bindNull().bindNull().bindNull();
    insert.bind(std::int64_t{!report.fault && report.tolerated});
    insert.bind(facts.name).bind(facts.assembly).bind(facts.width).bind(facts.height).bind(facts.thickness);
    insert.bind(facts.material).bind(facts.materialGroup).bind(facts.materialType).bind(facts.machine);
    insert.bind(facts.workOrder).bind(facts.partCount).bind(facts.placementCount).bind(facts.shapeCount);
    insert.bind(facts.stationCount).bind(facts.toolCount);
    insert.bind(static_cast<std::int64_t>(result.warnings.size())).bind(run_).bind(seen);
    (void)insert.step();
  }

  // ---- SQLite --------------------------------------------------------------------------------------

  void begin() { execute("BEGIN IMMEDIATE"); }
  void commit() { execute("COMMIT"); }

  void execute(const std::string& sql) {
    if (sqlite3_exec(database_, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) fail();
  }
  std::int64_t number(const std::string& sql) {
    Statement statement = nullptr;
    if (sqlite3_prepare_v2(database_, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK) fail();
    const bool hasRow = sqlite3_step(statement) == SQLITE_ROW;
    const std::int64_t value = hasRow ? sqlite3_column_int64(statement, 0) : 0;
    if (sqlite3_finalize(statement) != SQLITE_OK || !hasRow) fail();
    return value;
  }
  std::int64_t pragma(const std::string& name) { return number("PRAGMA " + name); }

  Statement prepared(const char* sql) {
    Statement statement = nullptr;
    if (sqlite3_prepare_v3(database_, sql, -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr) != SQLITE_OK) fail();
    statements_.push_back(statement);
    return statement;
  }
  void finalizeAll() {
    for (Statement statement : statements_) (void)sqlite3_finalize(statement);
    statements_.clear();
  }
  void close() {
    finalizeAll();
    (void)sqlite3_close(database_);
    database_ = nullptr;
  }

  const std::string path_, ownPath_;
  std::vector<FileIdentity> identities_;  // of its files
  std::mutex mutex_;
  sqlite3* database_ = nullptr;
  std::vector<Statement> statements_;
  Statement find_ = nullptr, findWarnings_ = nullptr, seen_ = nullptr, findSeen_ = nullptr, remove_ = nullptr;
  Statement insert_ = nullptr, insertPart_ = nullptr, insertTool_ = nullptr, insertWarning_ = nullptr;
  Statement removeUnseen_ = nullptr, finishRun_ = nullptr;
  std::int64_t run_ = 0;
  std::vector<FileResult> pending_;
  std::size_t pendingRows_ = 0;
  Clock::time_point firstPending_;
};

bool Catalogue::isAvailable() { return true; }
Catalogue::Catalogue(const std::string& path, const std::string& settings, std::chrono::milliseconds longestWait)
    : database_(std::make_unique<Database>(path, settings, longestWait)) {}
std::optional<FileResult> Catalogue::find(const FileResult& file) const { return database_->find(file); }
bool Catalogue::isOwnFile(const std::string& path) const { return database_->isOwnFile(path); }
void Catalogue::add(FileResult result) { database_->add(std::move(result)); }
void Catalogue::finish(const std::vector<std::string>& completeFolders) { database_->finish(completeFolders); }

#else

class Catalogue::Database {};

bool Catalogue::isAvailable() { return false; }
Catalogue::Catalogue(const std::string&, const std::string&, std::chrono::milliseconds) {
  throw CatalogueError("this torvio was built without SQLite and has no catalogues");
}
std::optional<FileResult> Catalogue::find(const FileResult&) const { return std::nullopt; }
bool Catalogue::isOwnFile(const std::string&) const { return false; }
void Catalogue::add(FileResult) {}
void Catalogue::finish(const std::vector<std::string>&) {}

#endif

Catalogue::~Catalogue() = default;

}  // namespace oldtorvio::archive
