#include "platform/ado/database_error.h"

#include <sqlite3.h>

#include <cerrno>

namespace ostrakan::ado {

std::optional<std::u16string> StorageFailureSentence(const std::exception& error) {
  const auto* db = dynamic_cast<const DatabaseError*>(&error);
  if (!db) return std::nullopt;
  const int primary = db->code & 0xff;
  const int err = db->systemErrno;
  if (primary == SQLITE_FULL || err == ENOSPC || err == EDQUOT)
    return u"服务器的磁盘已满，数据无法保存，请腾出空间后再试。";
  if (primary == SQLITE_READONLY || primary == SQLITE_PERM || primary == SQLITE_CANTOPEN ||
      err == EACCES || err == EPERM || err == EROFS)
    return u"数据库文件或其所在文件夹不可写，数据无法保存，请检查它们的权限。";
  return std::nullopt;
}

}  // namespace ostrakan::ado
