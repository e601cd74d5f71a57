<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en_GB" sourcelanguage="zh_CN">
<context>
    <name>service</name>
    <message>
        <source>账号组</source>
        <translation>Account group</translation>
    </message>
    <message>
        <source>风控配置</source>
        <translation>Risk settings</translation>
    </message>
    <message>
        <source>邮件规则</source>
        <translation>E-mail rules</translation>
    </message>
    <message>
        <source>证券分类</source>
        <translation>Security category</translation>
    </message>
    <message>
        <source>账号</source>
        <translation>Account</translation>
    </message>
    <message>
        <source>产品</source>
        <translation>Product</translation>
    </message>
    <message>
        <source>证券</source>
        <translation>Security</translation>
    </message>
    <message>
        <source>用户</source>
        <translation>User</translation>
    </message>
    <message>
        <source>机构</source>
        <translation>Institution</translation>
    </message>
    <message>
        <source>分系统</source>
        <translation>Sub-system</translation>
    </message>
    <message>
        <source>审计记录</source>
        <translation>Audit rows</translation>
    </message>
    <message>
        <source>操作编号</source>
        <translation>Operation ids</translation>
    </message>
    <message>
        <source>数据库</source>
        <translation>Database</translation>
    </message>
    <message>
        <source>--outcome 应为 ok、refused 或结果代码：%1</source>
        <translation>--outcome has to be ok, refused or an outcome: %1</translation>
    </message>
    <message>
        <source>时间</source>
        <translation>Time</translation>
    </message>
    <message>
        <source>操作</source>
        <translation>Operation</translation>
    </message>
    <message>
        <source>对象</source>
        <translation>Subject</translation>
    </message>
    <message>
        <source>标识</source>
        <translation>Key</translation>
    </message>
    <message>
        <source>结果</source>
        <translation>Outcome</translation>
    </message>
    <message>
        <source>说明</source>
        <translation>Details</translation>
    </message>
    <message>
        <source>变更前</source>
        <translation>Before</translation>
    </message>
    <message>
        <source>变更后</source>
        <translation>After</translation>
    </message>
    <message>
        <source>无法读取文件：%1（%2）</source>
        <translation>Cannot read file: %1 (%2)</translation>
    </message>
    <message>
        <source>该数据库是空的</source>
        <translation>The database is empty</translation>
    </message>
    <message>
        <source>数据库版本（%1）高于本程序支持的版本（%2），请升级程序</source>
        <translation>The database has version %1, newer than this program supports (%2); upgrade the program</translation>
    </message>
    <message>
        <source>数据库的结构与本程序的不同：%1</source>
        <translation>The structure of the database differs from that of this program: %1</translation>
    </message>
    <message>
        <source>文件已存在：%1（会被当作备份的一部分）</source>
        <translation>The file exists: %1 (it would be taken for a part of the backup)</translation>
    </message>
    <message>
        <source>无法移开原有文件：%1</source>
        <translation>Cannot move the existing file away: %1</translation>
    </message>
    <message>
        <source>备份文件与数据库是同一个文件</source>
        <translation>The backup and the database are the same file</translation>
    </message>
    <message>
        <source>数据库正被其他程序使用，请先停止它们（--force 可强制恢复）</source>
        <translation>Other programs use the database; stop them first (--force restores all the same)</translation>
    </message>
    <message>
        <source>原有文件不是可用的数据库：%1（--force 可将其改名保留后恢复）</source>
        <translation>The existing file is not a usable database: %1 (--force renames it and restores)</translation>
    </message>
    <message>
        <source>该文件不是备份：%1</source>
        <translation>The file is not a backup: %1</translation>
    </message>
    <message>
        <source>备份已损坏：内容与其校验和不符</source>
        <translation>The backup is damaged: its content does not match its checksum</translation>
    </message>
    <message>
        <source>备份与数据库的种类不同：SQLite 的备份只能恢复为 SQLite 数据库文件，PostgreSQL 的备份只能恢复到 PostgreSQL</source>
        <translation>The backup is of another kind than the database: a backup of SQLite can only be restored to an SQLite file, one of PostgreSQL only to PostgreSQL</translation>
    </message>
    <message>
        <source>%1：%2（%3字节），已校验
</source>
        <translation>%1: %2 (%3 bytes), verified
</translation>
    </message>
    <message>
        <source>版本 %1，分系统 %2，账号组 %3，账号 %4，用户 %5，审计记录 %6
</source>
        <translation>Version: %1, sub-systems: %2, account groups: %3, accounts: %4, users: %5, audit rows: %6
</translation>
    </message>
    <message>
        <source>没有校验和，不能发现每一处改动
</source>
        <translation>Without a checksum, not every change can be found
</translation>
    </message>
    <message>
        <source>备份</source>
        <translation>Backup</translation>
    </message>
    <message>
        <source>备份已完成</source>
        <translation>Backup made</translation>
    </message>
    <message>
        <source>备份可用</source>
        <translation>Backup usable</translation>
    </message>
    <message>
        <source>恢复</source>
        <translation>Redo</translation>
    </message>
    <message>
        <source>数据库已恢复自备份</source>
        <translation>Database restored from backup</translation>
    </message>
    <message>
        <source>无法写入：%1（%2）</source>
        <translation>Cannot write: %1 (%2)</translation>
    </message>
    <message>
        <source>种类</source>
        <translation>Kind</translation>
    </message>
    <message>
        <source>编号</source>
        <translation>Id</translation>
    </message>
    <message>
        <source>没有发现问题
</source>
        <translation>No problems found
</translation>
    </message>
    <message>
        <source>选项用法不正确：%1</source>
        <translation>Wrong use of an option: %1</translation>
    </message>
    <message>
        <source>未知选项：%1</source>
        <translation>Unknown option: %1</translation>
    </message>
    <message>
        <source>、</source>
        <translation>, </translation>
    </message>
    <message>
        <source>缺少参数：%1</source>
        <translation>Missing argument: %1</translation>
    </message>
    <message>
        <source>多余的参数：%1</source>
        <translation>Surplus arguments: %1</translation>
    </message>
    <message>
        <source>用法见 qav-admin %1 --help</source>
        <translation>See qav-admin %1 --help</translation>
    </message>
    <message>
        <source>--%1 应为数字：%2</source>
        <translation>--%1 has to be a number: %2</translation>
    </message>
    <message>
        <source>缺少选项：--%1</source>
        <translation>Missing option: --%1</translation>
    </message>
    <message>
        <source>请用 --store 或环境变量 QAV_STORE 指定数据库</source>
        <translation>Name the database with --store or the environment variable QAV_STORE</translation>
    </message>
    <message>
        <source>数据库中还没有分系统</source>
        <translation>The database has no sub-system yet</translation>
    </message>
    <message>
        <source>数据库中有多个分系统，请用 --server 指定</source>
        <translation>The database has several sub-systems; name one with --server</translation>
    </message>
    <message>
        <source>分系统“%1”不存在</source>
        <translation>There is no sub-system &quot;%1&quot;</translation>
    </message>
    <message>
        <source>--as 不能为空</source>
        <translation>--as must not be empty</translation>
    </message>
    <message>
        <source>--as 不能超过%1个字符，也不能包含换行、控制字符或不可见字符</source>
        <translation>--as must not exceed %1 characters or contain line breaks, control characters or invisible characters</translation>
    </message>
    <message>
        <source>请指定命令</source>
        <translation>Name a command</translation>
    </message>
    <message>
        <source>未知命令：%1</source>
        <translation>Unknown command: %1</translation>
    </message>
    <message>
        <source>账号（%1）不属于本分系统</source>
        <translation>Account %1 does not belong to this sub-system</translation>
    </message>
    <message>
        <source>没有风控配置</source>
        <translation>There are no risk settings</translation>
    </message>
    <message>
        <source>账号组没有账号，却设置了风控</source>
        <translation>The account group has risk settings but no accounts</translation>
    </message>
    <message>
        <source>账号组没有账号</source>
        <translation>The account group has no accounts</translation>
    </message>
    <message>
        <source>账号%1</source>
        <translation>Account %1</translation>
    </message>
    <message>
        <source>%1不属于账号组的所属机构</source>
        <translation>%1 does not belong to the institution of the account group</translation>
    </message>
    <message>
        <source>%1已销户</source>
        <translation>%1 is closed</translation>
    </message>
    <message>
        <source>%1不允许加入账号组</source>
        <translation>%1 must not be in account groups</translation>
    </message>
    <message>
        <source>%1黑白名单重复</source>
        <translation>The black and white list of %1 is repeated</translation>
    </message>
    <message>
        <source>反向单交易设置</source>
        <translation>Reverse-order settings</translation>
    </message>
    <message>
        <source>对敲交易设置</source>
        <translation>Wash-trade settings</translation>
    </message>
    <message>
        <source>资产组合风控第%1条</source>
        <translation>Portfolio limit %1</translation>
    </message>
    <message>
        <source>%1黑白名单第%2条：%3</source>
        <translation>Black and white list of %1, entry %2: %3</translation>
    </message>
    <message>
        <source>%1等%2个</source>
        <translation>%1, … (%2 in all)</translation>
    </message>
    <message>
        <source>账号%1也在账号组%2%3：%4%5在本组为白名单，在该组为黑名单</source>
        <translation>Account %1 is also in account group %2 %3: %4 %5 is on the white list here and on the black list there</translation>
    </message>
    <message>
        <source>账号%1也在账号组%2%3：%4%5在本组为黑名单，在该组为白名单</source>
        <translation>Account %1 is also in account group %2 %3: %4 %5 is on the black list here and on the white list there</translation>
    </message>
    <message>
        <source>新增</source>
        <translation>Add</translation>
    </message>
    <message>
        <source>变更</source>
        <translation>changed</translation>
    </message>
    <message>
        <source>不变</source>
        <translation>unchanged</translation>
    </message>
    <message>
        <source>错误</source>
        <translation>refused</translation>
    </message>
    <message>
        <source>目录中没有可导入的文件：%1</source>
        <translation>The directory holds no files to import: %1</translation>
    </message>
    <message>
        <source>请指定文件或目录（--directory）</source>
        <translation>Name files or a directory (--directory)</translation>
    </message>
    <message>
        <source>%1 第%2行 %3 %4</source>
        <translation>%1 line %2 %3 %4</translation>
    </message>
    <message>
        <source>
    %1：“%2” → “%3”</source>
        <translation>
    %1: &quot;%2&quot; → &quot;%3&quot;</translation>
    </message>
    <message>
        <source>，</source>
        <translation>, </translation>
    </message>
    <message>
        <source>%1：已导入
</source>
        <translation>%1: imported
</translation>
    </message>
    <message>
        <source>%1：未导入
</source>
        <translation>%1: not imported
</translation>
    </message>
    <message>
        <source>--encoding 应为 utf-8 或 gb18030：%1</source>
        <translation>--encoding has to be utf-8 or gb18030: %1</translation>
    </message>
    <message>
        <source>导入</source>
        <translation>Import</translation>
    </message>
    <message>
        <source>--encoding 应为 utf-8、utf-8-bom 或 gb18030：%1</source>
        <translation>--encoding has to be utf-8, utf-8-bom or gb18030: %1</translation>
    </message>
    <message>
        <source>无法创建目录：%1</source>
        <translation>Cannot create the directory: %1</translation>
    </message>
    <message>
        <source>文件</source>
        <translation>File</translation>
    </message>
    <message>
        <source>行数</source>
        <translation>Rows</translation>
    </message>
    <message>
        <source>导出</source>
        <translation>Export</translation>
    </message>
    <message>
        <source>import --store qav.db --server 上海分系统 --new-server SH01 --accounts accounts.csv</source>
        <translation>import --store qav.db --server Shanghai --new-server SH01 --accounts accounts.csv</translation>
    </message>
    <message>
        <source>没有名为%1的账号组</source>
        <translation>There is no account group named %1</translation>
    </message>
    <message>
        <source>曾有多个账号组名为%1，请用 --id 指定：%2</source>
        <translation>Several account groups have been named %1; choose one with --id: %2</translation>
    </message>
    <message>
        <source>--%1 不是有效的时间：%2（例如 2026-01-05 09:30）</source>
        <translation>--%1 is not a valid time: %2 (for example 2026-01-05 09:30)</translation>
    </message>
    <message>
        <source>--at 和 --revision 只能选一个</source>
        <translation>Only one of --at and --revision may be used</translation>
    </message>
    <message>
        <source>请用 --id 或 --name 指定账号组</source>
        <translation>Name the account group with --id or --name</translation>
    </message>
    <message>
        <source>没有编号为%1的账号组</source>
        <translation>There is no account group with the id %1</translation>
    </message>
    <message>
        <source>%1 于 %2</source>
        <translation>%1 at %2</translation>
    </message>
    <message>
        <source>账号组名称</source>
        <translation>Account group</translation>
    </message>
    <message>
        <source>所属机构</source>
        <translation>Institution</translation>
    </message>
    <message>
        <source>账号数</source>
        <translation>Accounts</translation>
    </message>
    <message>
        <source>修订</source>
        <translation>Revision</translation>
    </message>
    <message>
        <source>修改人</source>
        <translation>Changed by</translation>
    </message>
    <message>
        <source>修改时间</source>
        <translation>Changed at</translation>
    </message>
    <message>
        <source>机构编号</source>
        <translation>Institution id</translation>
    </message>
    <message>
        <source>保存内容</source>
        <translation>Saved</translation>
    </message>
    <message>
        <source>%1 保存</source>
        <translation>saved by %1</translation>
    </message>
    <message>
        <source>初始配置</source>
        <translation>initial settings</translation>
    </message>
    <message>
        <source>风控配置 修订%1（%2）
%3</source>
        <translation>Risk settings, revision %1 (%2)
%3</translation>
    </message>
    <message>
        <source>账号组 %1“%2” 修订%3（%4 %5）
所属机构：%6
账号（%7个）
</source>
        <translation>Account group %1 &quot;%2&quot;, revision %3 (%4, %5)
Institution: %6
Accounts (%7)
</translation>
    </message>
    <message>
        <source>无</source>
        <translation>None</translation>
    </message>
    <message>
        <source>历史记录中的账号（%1）已不存在</source>
        <translation>Account %1 of the history no longer exists</translation>
    </message>
    <message>
        <source>账号组%1没有修订%2</source>
        <translation>Account group %1 has no revision %2</translation>
    </message>
    <message>
        <source>账号组%1在%2还不存在</source>
        <translation>Account group %1 did not exist yet at %2</translation>
    </message>
    <message>
        <source>账号组%1已被%2删除</source>
        <translation>Account group %1 was deleted by %2</translation>
    </message>
    <message>
        <source>账号组%1的风控配置没有修订%2</source>
        <translation>The risk settings of account group %1 have no revision %2</translation>
    </message>
    <message>
        <source>修订%1</source>
        <translation>revision %1</translation>
    </message>
    <message>
        <source>%1历史中缺少修订%2</source>
        <translation>The history of &quot;%1&quot; lacks revision %2</translation>
    </message>
    <message>
        <source>%1历史中缺少修订%2至修订%3</source>
        <translation>The history of &quot;%1&quot; lacks revisions %2 to %3</translation>
    </message>
    <message>
        <source>账号组历史在删除之后还有%1</source>
        <translation>The history of the account group goes on after its deletion with %1</translation>
    </message>
    <message>
        <source>账号组历史%1：%2</source>
        <translation>History of the account group, %1: %2</translation>
    </message>
    <message>
        <source>账号组没有历史</source>
        <translation>The account group has no history</translation>
    </message>
    <message>
        <source>账号组历史以删除结束，账号组却还在</source>
        <translation>The history ends with a deletion, but the account group is still there</translation>
    </message>
    <message>
        <source>账号组已不在，历史中却没有删除</source>
        <translation>The account group is gone, but its history has no deletion</translation>
    </message>
    <message>
        <source>%1为%2，历史中最后为%3</source>
        <translation>&quot;%1&quot; has %2, but its history ends with %3</translation>
    </message>
    <message>
        <source>%1的内容与历史中的%2不同</source>
        <translation>The content of &quot;%1&quot; differs from %2 of its history</translation>
    </message>
    <message>
        <source>风控配置历史%1：%2</source>
        <translation>History of the risk settings, %1: %2</translation>
    </message>
    <message>
        <source>下一个%1编号（%2）已经用过，用到了%3</source>
        <translation>The next id for &quot;%1&quot; (%2) was used already; ids up to %3 are taken</translation>
    </message>
    <message>
        <source>资产组合风控</source>
        <translation>Portfolio limits</translation>
    </message>
    <message>
        <source>机构编号不是有效的编号：%1</source>
        <translation>This is not a valid institution id: %1</translation>
    </message>
    <message>
        <source>机构名称</source>
        <translation>The institution name</translation>
    </message>
    <message>
        <source>机构名称%1已被机构%2使用</source>
        <translation>The name %1 is already used by institution %2</translation>
    </message>
    <message>
        <source>机构%1不存在</source>
        <translation>There is no institution %1</translation>
    </message>
    <message>
        <source>机构%1已存在</source>
        <translation>Institution %1 already exists</translation>
    </message>
    <message>
        <source>文件已存在：%1（--force 可替换）</source>
        <translation>The file exists: %1 (--force replaces it)</translation>
    </message>
    <message>
        <source>%1：无法写入磁盘（%2）</source>
        <translation>%1: cannot write to disk (%2)</translation>
    </message>
    <message>
        <source>%1：文件名过长</source>
        <translation>%1: the file name is too long</translation>
    </message>
    <message>
        <source>%1：无法写入（%2）</source>
        <translation>%1: cannot write (%2)</translation>
    </message>
    <message>
        <source>不能替换：%1（不是普通文件）</source>
        <translation>Cannot replace %1 (it is not a regular file)</translation>
    </message>
    <message>
        <source>不能替换：%1（属于该数据库）</source>
        <translation>Cannot replace %1 (it belongs to the database)</translation>
    </message>
    <message>
        <source>没有找到 %1，请安装 PostgreSQL 客户端程序，或在有该程序的机器上运行：%1 %2</source>
        <translation>%1 was not found; install the PostgreSQL client programs, or run this on a machine that has them: %1 %2</translation>
    </message>
    <message>
        <source>%1 失败：%2</source>
        <translation>%1 failed: %2</translation>
    </message>
    <message>
        <source>该文件不是数据服务的备份：%1</source>
        <translation>The file is not a backup of the data service: %1</translation>
    </message>
    <message>
        <source>清理的截止时间不能晚于现在</source>
        <translation>The end of what is removed must not be in the future</translation>
    </message>
    <message>
        <source>最近%1小时的操作编号可能还会重发，不能清理</source>
        <translation>Operation ids of the last %1 hours may be sent again and cannot be removed</translation>
    </message>
    <message>
        <source>修订%1是账号组的删除，请选择更早的修订</source>
        <translation>Revision %1 is the deletion of the account group; choose an earlier one</translation>
    </message>
    <message>
        <source>账号组没有风控配置</source>
        <translation>The account group has no risk settings</translation>
    </message>
    <message>
        <source>账号组%1已被删除，已重新添加为账号组%2
</source>
        <translation>Account group %1 had been deleted and was added again as account group %2
</translation>
    </message>
    <message>
        <source>%1已恢复，新的修订为%2
</source>
        <translation>%1 restored as revision %2
</translation>
    </message>
    <message>
        <source>请用 --revision 或 --at 指定要恢复的状态</source>
        <translation>Name the state to restore with --revision or --at</translation>
    </message>
    <message>
        <source>用户%1不存在</source>
        <translation>There is no user %1</translation>
    </message>
    <message>
        <source>代码</source>
        <translation>Code</translation>
    </message>
    <message>
        <source>名称</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>没有权限%1</source>
        <translation>There is no right %1</translation>
    </message>
    <message>
        <source>right grant li 10719 category-1 证券账号</source>
        <translation>right grant li 10719 category-1 stock-account</translation>
    </message>
    <message>
        <source>%1黑白名单（%2条）
</source>
        <translation>Black and white list of %1 (%2)
</translation>
    </message>
    <message>
        <source>（编号%1）</source>
        <translation> (id %1)</translation>
    </message>
    <message>
        <source>  %1 %2 %3 %4 %5%6：%7%8%9
</source>
        <translation>  %1 %2 %3 %4 %5 %6: %7%8%9
</translation>
    </message>
    <message>
        <source>（停用）</source>
        <translation> (disabled)</translation>
    </message>
    <message>
        <source>，%1</source>
        <translation>, %1</translation>
    </message>
    <message>
        <source>反向单交易检查 %1，仅警告 %2，不计已撤单 %3，豁免分类 %4
对敲交易禁止 %5，豁免分类 %6
</source>
        <translation>Reverse-order check: %1, warning only: %2, without cancelled orders: %3, exempt categories: %4
Wash trades forbidden: %5, exempt categories: %6
</translation>
    </message>
    <message>
        <source>  %1%2：%3 %4
</source>
        <translation>  %1%2: %3 %4
</translation>
    </message>
    <message>
        <source>资产组合风控（%1条）
</source>
        <translation>Portfolio limits (%1)
</translation>
    </message>
    <message>
        <source>邮件规则（%1条）
</source>
        <translation>E-mail rules (%1)
</translation>
    </message>
    <message>
        <source>系统标识</source>
        <translation>System tag</translation>
    </message>
    <message>
        <source>server add 上海分系统 SH01 --store qav.db</source>
        <translation>server add Shanghai SH01 --store qav.db</translation>
    </message>
    <message>
        <source>是</source>
        <translation>Yes</translation>
    </message>
    <message>
        <source>否</source>
        <translation>No</translation>
    </message>
    <message>
        <source>已保存
</source>
        <translation>Saved
</translation>
    </message>
    <message>
        <source>内容没有变化
</source>
        <translation>Nothing has changed
</translation>
    </message>
    <message>
        <source>请在标准输入的第一行给出密码</source>
        <translation>Give the password in the first line of standard input</translation>
    </message>
    <message>
        <source>密码：</source>
        <translation>Password: </translation>
    </message>
    <message>
        <source>再次输入密码：</source>
        <translation>Password again: </translation>
    </message>
    <message>
        <source>两次输入的密码不一致</source>
        <translation>The passwords differ</translation>
    </message>
    <message>
        <source>用户名不能为空，不能超过64个字节，首尾不能有空格</source>
        <translation>The user name must not be empty, exceed 64 bytes, or begin or end with a blank</translation>
    </message>
    <message>
        <source>用户名不能包含控制字符或不可见字符</source>
        <translation>The user name must not contain control characters or invisible characters</translation>
    </message>
    <message>
        <source>用户名不能以“%1”开头</source>
        <translation>The user name must not begin with &quot;%1&quot;</translation>
    </message>
    <message>
        <source>姓名不能超过64个字符，也不能包含控制字符或不可见字符</source>
        <translation>The name must not exceed 64 characters or contain control characters or invisible characters</translation>
    </message>
    <message>
        <source>密码至少8个字符，最多1024个字节</source>
        <translation>The password has to have at least 8 characters and at most 1024 bytes</translation>
    </message>
    <message>
        <source>内存不足，无法保存密码</source>
        <translation>There is not enough memory to store the password</translation>
    </message>
    <message>
        <source>用户名</source>
        <translation>User name</translation>
    </message>
    <message>
        <source>姓名</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>启用</source>
        <translation>Enabled</translation>
    </message>
    <message>
        <source>权限数</source>
        <translation>Rights</translation>
    </message>
    <message>
        <source>用户%1已存在</source>
        <translation>User %1 already exists</translation>
    </message>
    <message>
        <source>请用 --institution 指定机构，或用 --none 解除绑定</source>
        <translation>Name the institution with --institution, or remove it with --none</translation>
    </message>
    <message>
        <source>user add li --name 李岚 --institution 101 --rights edit-account-group,10041</source>
        <translation>user add li --name &quot;Li Lan&quot; --institution 101 --rights edit-account-group,10041</translation>
    </message>
    <message>
        <source>%1第%2行</source>
        <translation>%1 line %2</translation>
    </message>
    <message>
        <source>缺失</source>
        <translation>is missing</translation>
    </message>
    <message>
        <source>缺少 [tls] 一节</source>
        <translation>The section [tls] is missing</translation>
    </message>
    <message>
        <source>缺少 [[listen]] 一节</source>
        <translation>The section [[listen]] is missing</translation>
    </message>
    <message>
        <source>只能用于本机回环地址</source>
        <translation>is only allowed for a loopback address</translation>
    </message>
    <message>
        <source>重复</source>
        <translation>is repeated</translation>
    </message>
    <message>
        <source>只能是本机回环地址</source>
        <translation>has to be a loopback address</translation>
    </message>
    <message>
        <source>不符合TOML格式：%1</source>
        <translation>Not TOML: %1</translation>
    </message>
    <message>
        <source>无法读取目录 %1</source>
        <translation>Cannot read directory %1</translation>
    </message>
    <message>
        <source>无法读取配置文件 %1：%2</source>
        <translation>Cannot read configuration file %1: %2</translation>
    </message>
    <message>
        <source>文件过大</source>
        <translation>the file is too large</translation>
    </message>
    <message>
        <source>%1：%2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>%1 = %2（%3）</source>
        <translation>%1 = %2 (%3)</translation>
    </message>
    <message>
        <source>通信次序错误：握手之前不能发送其他消息</source>
        <translation>Message out of turn: nothing may be sent before the handshake</translation>
    </message>
    <message>
        <source>通信数据超出限制: 只有请求可以超过 %1 字节</source>
        <translation>The message is too large: only requests may exceed %1 bytes</translation>
    </message>
    <message>
        <source>通信次序错误：重复的握手消息</source>
        <translation>Message out of turn: the handshake is repeated</translation>
    </message>
    <message>
        <source>数据服务正在停止</source>
        <translation>The data service is stopping</translation>
    </message>
    <message>
        <source>同时登录的用户过多，请稍后再试</source>
        <translation>Too many users are logging in; try again later</translation>
    </message>
    <message>
        <source>登录失败次数过多，连接已被数据服务关闭</source>
        <translation>Too many failed log-ins; the data service has closed the connection</translation>
    </message>
    <message>
        <source>请求编号重复</source>
        <translation>The request id is repeated</translation>
    </message>
    <message>
        <source>请求已取消</source>
        <translation>The request was cancelled</translation>
    </message>
    <message>
        <source>通信次序错误：该消息只能由服务端发送</source>
        <translation>Message out of turn: only the server may send it</translation>
    </message>
    <message>
        <source>消息传输过慢，连接已被数据服务关闭</source>
        <translation>The message arrived too slowly; the data service has closed the connection</translation>
    </message>
    <message>
        <source>连接超时，已被数据服务关闭</source>
        <translation>The connection timed out; the data service has closed it</translation>
    </message>
    <message>
        <source>数据库中没有分系统，请先导入数据</source>
        <translation>The database has no sub-system; import data first</translation>
    </message>
    <message>
        <source>数据库中有多个分系统，[[listen]] 必须指定 sub_system</source>
        <translation>The database has several sub-systems; [[listen]] has to name its sub_system</translation>
    </message>
    <message>
        <source>数据库中没有分系统“%1”</source>
        <translation>The database has no sub-system &quot;%1&quot;</translation>
    </message>
    <message>
        <source>不加密的端口只能用于本机回环地址</source>
        <translation>A port without encryption is only allowed on a loopback address</translation>
    </message>
    <message>
        <source>无法监听 %1 端口 %2：%3</source>
        <translation>Cannot listen on %1 port %2: %3</translation>
    </message>
    <message>
        <source>缺少数据库：[store] 一节的 location，或选项 --store</source>
        <translation>The database is missing: location in the section [store], or the option --store</translation>
    </message>
    <message>
        <source>配置正确</source>
        <translation>The configuration is correct</translation>
    </message>
    <message>
        <source>正在等待数据库：%1</source>
        <translation>Waiting for the database: %1</translation>
    </message>
    <message>
        <source>正在打开数据库</source>
        <translation>Opening the database</translation>
    </message>
    <message>
        <source>未知的参数 %1</source>
        <translation>Unknown argument %1</translation>
    </message>
    <message>
        <source>配置项 %1 %2</source>
        <translation>The setting %1 %2</translation>
    </message>
    <message>
        <source>必须是 %1 到 %2 的整数</source>
        <translation>has to be an integer from %1 to %2</translation>
    </message>
    <message>
        <source>必须是 true 或 false</source>
        <translation>has to be true or false</translation>
    </message>
    <message>
        <source>必须是非空文本</source>
        <translation>has to be a text that is not empty</translation>
    </message>
    <message>
        <source>不是有效的IP地址</source>
        <translation>is not a valid IP address</translation>
    </message>
    <message>
        <source>配置项 %1 必须是一节，写作 [%1]</source>
        <translation>The setting %1 has to be a section, written [%1]</translation>
    </message>
    <message>
        <source>的每一项写作 [[%1]]</source>
        <translation>has to be written [[%1]], once for each item</translation>
    </message>
    <message>
        <source>未知的配置项 %1</source>
        <translation>Unknown setting %1</translation>
    </message>
    <message>
        <source>只能是 %1</source>
        <translation>has to be one of %1</translation>
    </message>
    <message>
        <source>正在服务</source>
        <translation>Serving</translation>
    </message>
    <message>
        <source>正在重新读取证书</source>
        <translation>Reading the certificate again</translation>
    </message>
    <message>
        <source>正在停止</source>
        <translation>Stopping</translation>
    </message>
    <message>
        <source>无法读取证书文件 %1：%2</source>
        <translation>Cannot read certificate file %1: %2</translation>
    </message>
    <message>
        <source>证书文件 %1 中没有PEM格式的证书</source>
        <translation>Certificate file %1 holds no certificate in PEM format</translation>
    </message>
    <message>
        <source>无法读取私钥文件 %1：%2</source>
        <translation>Cannot read key file %1: %2</translation>
    </message>
    <message>
        <source>私钥文件 %1 中没有可用的PEM私钥（RSA或EC，不加密）</source>
        <translation>Key file %1 holds no usable PEM key (RSA or EC, not encrypted)</translation>
    </message>
    <message>
        <source>私钥 %1 与证书 %2 不匹配</source>
        <translation>Key %1 does not match certificate %2</translation>
    </message>
    <message>
        <source>证书自 %1 起有效，在此之前客户端会拒绝连接</source>
        <translation>The certificate is valid from %1; until then clients refuse to connect</translation>
    </message>
    <message>
        <source>私钥文件 %1 对所有人可读</source>
        <translation>Key file %1 is readable by everybody</translation>
    </message>
    <message>
        <source>证书已于 %1 过期，客户端会拒绝连接</source>
        <translation>The certificate expired at %1; clients refuse to connect</translation>
    </message>
    <message>
        <source>证书将于 %1 过期，请及时更换</source>
        <translation>The certificate expires at %1; replace it in time</translation>
    </message>
    <message>
        <source>账号组名称“%1”已被使用</source>
        <translation>The account group name &quot;%1&quot; is already in use</translation>
    </message>
    <message>
        <source>账号组“%1”已被%2修改，请刷新后重试</source>
        <translation>Account group &quot;%1&quot; was changed by %2; refresh and try again</translation>
    </message>
    <message>
        <source>您没有%1的权限，不能从账号组中移除这类账号</source>
        <translation>You lack the right &quot;%1&quot; and cannot remove accounts of this type from account groups</translation>
    </message>
    <message>
        <source>账号组“%1”已被他人修改，请刷新后重试</source>
        <translation>Account group &quot;%1&quot; was changed by somebody else; refresh and try again</translation>
    </message>
    <message>
        <source>添加账号组</source>
        <translation>Add account groups</translation>
    </message>
    <message>
        <source>编辑账号组</source>
        <translation>Edit account groups</translation>
    </message>
    <message>
        <source>删除账号组</source>
        <translation>Delete account groups</translation>
    </message>
    <message>
        <source>监控范围</source>
        <translation>Scope</translation>
    </message>
    <message>
        <source>资产类别</source>
        <translation>Asset class</translation>
    </message>
    <message>
        <source>监控指标</source>
        <translation>Measure</translation>
    </message>
    <message>
        <source>比较基准</source>
        <translation>Base</translation>
    </message>
    <message>
        <source>比较方式</source>
        <translation>The comparison</translation>
    </message>
    <message>
        <source>单位</source>
        <translation>Unit</translation>
    </message>
    <message>
        <source>触发动作</source>
        <translation>Action</translation>
    </message>
    <message>
        <source>全部资产的比较基准不能与监控指标相同</source>
        <translation>For all assets the base must differ from the measure</translation>
    </message>
    <message>
        <source>数量只能与总股本比较</source>
        <translation>A quantity can only be compared with the share capital</translation>
    </message>
    <message>
        <source>只有数量能与总股本比较</source>
        <translation>Only a quantity can be compared with the share capital</translation>
    </message>
    <message>
        <source>有比较基准时，单位只能是%</source>
        <translation>With a base, the unit must be %</translation>
    </message>
    <message>
        <source>单位为%时，请选择比较基准</source>
        <translation>Choose a base when the unit is %</translation>
    </message>
    <message>
        <source>数量的单位只能是股</source>
        <translation>The unit of a quantity must be shares</translation>
    </message>
    <message>
        <source>金额的单位只能是元或万元</source>
        <translation>The unit of an amount must be CNY or CNY 10,000</translation>
    </message>
    <message>
        <source>阈值不是有效的数字</source>
        <translation>The threshold is not a valid number</translation>
    </message>
    <message>
        <source>阈值不能小于0，只有浮动盈亏可以为负</source>
        <translation>The threshold must not be below 0; only floating profit may be negative</translation>
    </message>
    <message>
        <source>阈值不能超过10000%</source>
        <translation>The threshold must not exceed 10000%</translation>
    </message>
    <message>
        <source>阈值过大</source>
        <translation>The threshold is too large</translation>
    </message>
    <message>
        <source>备注不能超过%1个字符</source>
        <translation>The remark must not exceed %1 characters</translation>
    </message>
    <message>
        <source>备注含有控制字符</source>
        <translation>The remark contains control characters</translation>
    </message>
    <message>
        <source>%1（%2）无效</source>
        <translation>%1 (%2) is invalid</translation>
    </message>
    <message>
        <source>请选择证券分类</source>
        <translation>Choose a security category</translation>
    </message>
    <message>
        <source>%1：证券分类（编号%2）不存在</source>
        <translation>%1: there is no security category with the id %2</translation>
    </message>
    <message>
        <source>%1：您没有使用证券分类%2的权限</source>
        <translation>%1: you have no right to use security category %2</translation>
    </message>
    <message>
        <source>%1：%2是内部分类，不能豁免</source>
        <translation>%1: %2 is an internal category and cannot be exempt</translation>
    </message>
    <message>
        <source>用户名或密码错误</source>
        <translation>Wrong user name or password</translation>
    </message>
    <message>
        <source>操作编号已用于其他操作</source>
        <translation>The operation id was already used for another operation</translation>
    </message>
    <message>
        <source>您没有%1的权限</source>
        <translation>You lack the right &quot;%1&quot;</translation>
    </message>
    <message>
        <source>%1查询条件无效</source>
        <translation>The key of the query is invalid: %1</translation>
    </message>
    <message>
        <source>风控设置没有保存，邮件规则保持不变：%1</source>
        <translation>The risk settings were not saved, so the e-mail rules stay as they are: %1</translation>
    </message>
    <message>
        <source>邮件规则没有指明账号组</source>
        <translation>The e-mail rule names no account group</translation>
    </message>
    <message>
        <source>成功</source>
        <translation>success</translation>
    </message>
    <message>
        <source>失败</source>
        <translation>failed</translation>
    </message>
    <message>
        <source>未连接</source>
        <translation>not connected</translation>
    </message>
    <message>
        <source>超时</source>
        <translation>timed out</translation>
    </message>
    <message>
        <source>已取消</source>
        <translation>cancelled</translation>
    </message>
    <message>
        <source>格式错误</source>
        <translation>malformed</translation>
    </message>
    <message>
        <source>未登录</source>
        <translation>not logged in</translation>
    </message>
    <message>
        <source>无权限</source>
        <translation>No right</translation>
    </message>
    <message>
        <source>超出范围</source>
        <translation>out of scope</translation>
    </message>
    <message>
        <source>不存在</source>
        <translation>not found</translation>
    </message>
    <message>
        <source>冲突</source>
        <translation>conflict</translation>
    </message>
    <message>
        <source>值无效</source>
        <translation>invalid value</translation>
    </message>
    <message>
        <source>存储失败</source>
        <translation>storage failure</translation>
    </message>
    <message>
        <source>不支持</source>
        <translation>unsupported</translation>
    </message>
    <message>
        <source>超出限制</source>
        <translation>over the limit</translation>
    </message>
    <message>
        <source>账号组“%1”的风控设置已被%2修改，请重新打开后再设置</source>
        <translation>The risk settings of account group &quot;%1&quot; were changed by %2; open them again and repeat your changes</translation>
    </message>
    <message>
        <source>风控设置已被他人修改，请重新打开后再设置</source>
        <translation>The risk settings were changed by somebody else; open them again and repeat your changes</translation>
    </message>
    <message>
        <source>设置账号组风控</source>
        <translation>Change the risk settings of account groups</translation>
    </message>
    <message>
        <source>%1不属于分系统“%2”</source>
        <translation>%1 does not belong to sub-system &quot;%2&quot;</translation>
    </message>
    <message>
        <source>%1已销户，不能加入账号组</source>
        <translation>%1 is closed and cannot join an account group</translation>
    </message>
    <message>
        <source>您没有%1的权限，不能添加%2</source>
        <translation>%2 cannot be added: you lack the right &quot;%1&quot;</translation>
    </message>
    <message>
        <source>账号组数据过大，已被拒绝</source>
        <translation>The account group is too large and was refused</translation>
    </message>
    <message>
        <source>账号组最多包含%1个账号</source>
        <translation>An account group holds at most %1 accounts</translation>
    </message>
    <message>
        <source>账号组数据不完整，已被拒绝</source>
        <translation>The account group is incomplete and was refused</translation>
    </message>
    <message>
        <source>账号数据过大，已被拒绝</source>
        <translation>The account is too large and was refused</translation>
    </message>
    <message>
        <source>账号组名称%1</source>
        <translation>The account group name %1</translation>
    </message>
    <message>
        <source>账号组名称不能超过%1个字符</source>
        <translation>The account group name must not exceed %1 characters</translation>
    </message>
    <message>
        <source>所属机构%1不存在</source>
        <translation>There is no institution %1</translation>
    </message>
    <message>
        <source>所属机构不存在</source>
        <translation>There is no such institution</translation>
    </message>
    <message>
        <source>账号组至少要包含一个账号</source>
        <translation>An account group has to hold at least one account</translation>
    </message>
    <message>
        <source>%1不存在</source>
        <translation>%1 does not exist</translation>
    </message>
    <message>
        <source>%1重复</source>
        <translation>%1 is repeated</translation>
    </message>
    <message>
        <source>%1（%2）</source>
        <translation>%1 (%2)</translation>
    </message>
    <message>
        <source>%1于%2</source>
        <translation>%1 at %2</translation>
    </message>
    <message>
        <source>您只能操作本机构的账号组</source>
        <translation>You can only work with account groups of your own institution</translation>
    </message>
    <message>
        <source>账号组已被%1删除</source>
        <translation>The account group was deleted by %1</translation>
    </message>
    <message>
        <source>账号组不存在或已被删除</source>
        <translation>The account group does not exist or was deleted</translation>
    </message>
    <message>
        <source>证券分类查询条件无效</source>
        <translation>The key of the query for security categories is invalid</translation>
    </message>
    <message>
        <source>机构查询条件无效</source>
        <translation>The key of the query for institutions is invalid</translation>
    </message>
    <message>
        <source>“%1”不能超过%2个字符</source>
        <translation>&quot;%1&quot; must not exceed %2 characters</translation>
    </message>
    <message>
        <source>%1数据过大，已被拒绝</source>
        <translation>The data are too large and were refused: %1</translation>
    </message>
    <message>
        <source>%1数据无效：%2</source>
        <translation>The data are invalid: %1: %2</translation>
    </message>
    <message>
        <source>数据服务不支持修改数据类型 %1</source>
        <translation>The data service does not support changes of data type %1</translation>
    </message>
    <message>
        <source>不支持的操作</source>
        <translation>The operation is not supported</translation>
    </message>
    <message>
        <source>数据服务不支持查询数据类型 %1</source>
        <translation>The data service does not support queries of data type %1</translation>
    </message>
    <message>
        <source>操作编号过长</source>
        <translation>The operation id is too long</translation>
    </message>
    <message>
        <source>操作编号中不能包含空字符</source>
        <translation>The operation id must not contain null characters</translation>
    </message>
    <message>
        <source>请求中没有%1数据</source>
        <translation>The request lacks its data: %1</translation>
    </message>
    <message>
        <source>%1中的文本不能包含空字符</source>
        <translation>Texts must not contain null characters: %1</translation>
    </message>
    <message>
        <source>账号组不属于分系统“%1”</source>
        <translation>The account group does not belong to sub-system &quot;%1&quot;</translation>
    </message>
    <message>
        <source>%1最多%2条</source>
        <translation>%1: at most %2 are allowed</translation>
    </message>
    <message>
        <source>邮件规则%1：%2</source>
        <translation>E-mail rule %1: %2</translation>
    </message>
    <message>
        <source>邮件规则的标识不能为空</source>
        <translation>The key of an e-mail rule must not be empty</translation>
    </message>
    <message>
        <source>标识过长或含有不可见字符</source>
        <translation>the key is too long or contains invisible characters</translation>
    </message>
    <message>
        <source>邮件主题不能超过%1个字符，也不能含有控制字符</source>
        <translation>the subject must not exceed %1 characters or contain control characters</translation>
    </message>
    <message>
        <source>%1不是邮件地址，每个收件人只能是一个地址，如 name@example.com，由字母、数字和 . _ % + - 组成</source>
        <translation>%1 is not an e-mail address; each recipient has to be one address such as name@example.com, made of letters, digits and . _ % + -</translation>
    </message>
    <message>
        <source>黑白名单</source>
        <translation>Black and white list</translation>
    </message>
    <message>
        <source>反向单交易的豁免分类</source>
        <translation>Categories exempt from the reverse-order check</translation>
    </message>
    <message>
        <source>对敲交易的豁免分类</source>
        <translation>Categories exempt from the wash-trade ban</translation>
    </message>
    <message>
        <source>风控配置数据过大，已被拒绝</source>
        <translation>The risk settings are too large and were refused</translation>
    </message>
    <message>
        <source>邮件规则的收件人</source>
        <translation>Recipients of an e-mail rule</translation>
    </message>
    <message>
        <source>邮件规则%1不属于该账号组</source>
        <translation>E-mail rule %1 does not belong to the account group</translation>
    </message>
    <message>
        <source>邮件规则%1重复</source>
        <translation>E-mail rule %1 is repeated</translation>
    </message>
    <message>
        <source>分系统名称</source>
        <translation>The name of the sub-system</translation>
    </message>
    <message>
        <source>分系统%1已存在</source>
        <translation>Sub-system %1 already exists</translation>
    </message>
    <message>
        <source>系统标识%1已被使用</source>
        <translation>The system tag %1 is already in use</translation>
    </message>
    <message>
        <source>不能为空</source>
        <translation>must not be empty</translation>
    </message>
    <message>
        <source>不能包含控制字符或不可见字符，只能使用看得见的文字、数字、符号和空格</source>
        <translation>must not contain control characters or invisible characters, only visible letters, digits, symbols and blanks</translation>
    </message>
    <message>
        <source>至少要有一个看得见的文字、数字或符号</source>
        <translation>has to contain at least one visible letter, digit or symbol</translation>
    </message>
    <message>
        <source>名单类别（%1）无效</source>
        <translation>the kind of list (%1) is invalid</translation>
    </message>
    <message>
        <source>方向（%1）无效</source>
        <translation>the direction (%1) is invalid</translation>
    </message>
    <message>
        <source>证券代码不能为空</source>
        <translation>the security code must not be empty</translation>
    </message>
    <message>
        <source>证券代码不能超过%1个字符</source>
        <translation>The security code must not exceed %1 characters</translation>
    </message>
    <message>
        <source>%1不是证券代码，代码只能由字母、数字和 . - _ &amp; 组成</source>
        <translation>%1 is not a security code; codes consist of letters, digits and . - _ &amp;</translation>
    </message>
    <message>
        <source>证券名称不能超过%1个字符</source>
        <translation>The security name must not exceed %1 characters</translation>
    </message>
    <message>
        <source>证券名称含有控制字符</source>
        <translation>The security name contains control characters</translation>
    </message>
    <message>
        <source>证券%1同时在黑名单和白名单中，请只保留一个</source>
        <translation>security %1 is on both the black and the white list; keep only one</translation>
    </message>
    <message>
        <source>证券%1重复</source>
        <translation>security %1 is repeated</translation>
    </message>
    <message>
        <source>黑白名单的交易类型（%1）无效</source>
        <translation>The trade type of a black and white list (%1) is invalid</translation>
    </message>
    <message>
        <source>%1黑白名单第%2条：证券列表中没有%3，只能使用列表中的证券代码</source>
        <translation>Black and white list of %1, entry %2: %3 is not among the securities; only codes of listed securities may be used</translation>
    </message>
    <message>
        <source>添加和编辑账号组</source>
        <translation>Add and edit account groups</translation>
    </message>
    <message>
        <source>系统类型%1的证券分类</source>
        <translation>Security categories of system type %1</translation>
    </message>
    <message>
        <source>%1，请用 --encoding 指定</source>
        <translation>%1; tell which with --encoding</translation>
    </message>
    <message>
        <source>文件是空的</source>
        <translation>The file is empty</translation>
    </message>
    <message>
        <source>列“%1”重复</source>
        <translation>Column &quot;%1&quot; is repeated</translation>
    </message>
    <message>
        <source>缺少列“%1”</source>
        <translation>Column &quot;%1&quot; is missing</translation>
    </message>
    <message>
        <source>账号类型“%1”无效</source>
        <translation>&quot;%1&quot; is not a valid account type</translation>
    </message>
    <message>
        <source>与第%1行重复</source>
        <translation>Repeats line %1</translation>
    </message>
    <message>
        <source>列“%1”未使用</source>
        <translation>Column &quot;%1&quot; is not used</translation>
    </message>
    <message>
        <source>列数与表头不符</source>
        <translation>the row does not have as many columns as the header</translation>
    </message>
    <message>
        <source>所属机构“%1”不存在</source>
        <translation>There is no institution &quot;%1&quot;</translation>
    </message>
    <message>
        <source>%1已被电子表格改写为科学计数法：%2</source>
        <translation>A spreadsheet has turned &quot;%1&quot; into scientific notation: %2</translation>
    </message>
    <message>
        <source>“%1”不是有效的编号：%2</source>
        <translation>&quot;%1&quot; is not a valid id: %2</translation>
    </message>
    <message>
        <source>“%1”应为数字：%2</source>
        <translation>&quot;%1&quot; has to be a number: %2</translation>
    </message>
    <message>
        <source>“%1”应为“是”或“否”：%2</source>
        <translation>&quot;%1&quot; has to be yes or no: %2</translation>
    </message>
    <message>
        <source>这样的账号是为无权查看的账号保留的：%1</source>
        <translation>Such accounts are reserved for accounts that a user may not see: %1</translation>
    </message>
    <message>
        <source>账号“%1”不存在</source>
        <translation>There is no account &quot;%1&quot;</translation>
    </message>
    <message>
        <source>分系统“%1”已存在</source>
        <translation>Sub-system &quot;%1&quot; already exists</translation>
    </message>
    <message>
        <source>同一账号组的所属机构前后不一致</source>
        <translation>the rows of this account group name different institutions</translation>
    </message>
    <message>
        <source>“状态”应为数字、“正常”或“已销户”：%1</source>
        <translation>&quot;state&quot; has to be a number, 0 for normal: %1</translation>
    </message>
    <message>
        <source>机构名称“%1”已被机构%2使用</source>
        <translation>The institution name &quot;%1&quot; is already used by institution %2</translation>
    </message>
    <message>
        <source>账号已在账号组或产品中，不能变更所属机构</source>
        <translation>The account is in an account group or a product and cannot change its institution</translation>
    </message>
    <message>
        <source>账号不属于产品的所属机构</source>
        <translation>The account does not belong to the institution of the product</translation>
    </message>
    <message>
        <source>产品名称“%1”已被产品%2使用</source>
        <translation>The product name &quot;%1&quot; is already used by product %2</translation>
    </message>
    <message>
        <source>同一产品的名称、所属机构或排除标志前后不一致</source>
        <translation>the rows of this product have different names, institutions or exclusions</translation>
    </message>
    <message>
        <source>产品中已有其他机构的账号，不能变更所属机构</source>
        <translation>The product has accounts of another institution and cannot change its institution</translation>
    </message>
    <message>
        <source>上级分类“%1”不存在</source>
        <translation>There is no parent category &quot;%1&quot;</translation>
    </message>
    <message>
        <source>上级分类形成循环</source>
        <translation>The parent categories form a cycle</translation>
    </message>
    <message>
        <source>交易类型“%1”无效</source>
        <translation>&quot;%1&quot; is not a valid trade type</translation>
    </message>
    <message>
        <source>无法连接数据库</source>
        <translation>Cannot connect to the database</translation>
    </message>
    <message>
        <source>数据库文件已被删除或替换，请恢复文件并重新启动</source>
        <translation>The database file was deleted or replaced; restore it and restart</translation>
    </message>
    <message>
        <source>数据库中的记录已损坏：%1</source>
        <translation>A record in the database is damaged: %1</translation>
    </message>
    <message>
        <source>账号组编号已用完</source>
        <translation>There are no more ids for account groups</translation>
    </message>
    <message>
        <source>数据库文件已损坏: %1</source>
        <translation>The database file is damaged: %1</translation>
    </message>
    <message>
        <source>数据引用不完整: %1</source>
        <translation>A reference is broken: %1</translation>
    </message>
    <message>
        <source>数据库地址无效</source>
        <translation>The address of the database is invalid</translation>
    </message>
    <message>
        <source>数据库地址无效：%1 不能包含分号</source>
        <translation>The address of the database is invalid: %1 must not contain a semicolon</translation>
    </message>
    <message>
        <source>数据库操作失败，数据未保存</source>
        <translation>The database operation failed; nothing was saved</translation>
    </message>
    <message>
        <source>文本中不能包含空字符</source>
        <translation>Texts must not contain null characters</translation>
    </message>
    <message>
        <source>数据库中的风控配置已损坏：%1</source>
        <translation>Risk settings in the database are damaged: %1</translation>
    </message>
    <message>
        <source>该数据库属于其他程序，不能使用</source>
        <translation>The database belongs to another program and cannot be used</translation>
    </message>
    <message>
        <source>数据库版本（%1）与本程序不符，且数据库是只读的</source>
        <translation>The database has version %1, unlike this program, and is read-only</translation>
    </message>
    <message>
        <source>数据库文件不存在</source>
        <translation>The database file does not exist</translation>
    </message>
    <message>
        <source>数据服务内部错误</source>
        <translation>Internal error of the data service</translation>
    </message>
    <message>
        <source>数据库正被其他程序占用，请稍后重试</source>
        <translation>The database is in use by another program; try again later</translation>
    </message>
    <message>
        <source>数据库是只读的，无法保存</source>
        <translation>The database is read-only; nothing can be saved</translation>
    </message>
    <message>
        <source>数据库读写失败，请检查磁盘</source>
        <translation>Reading or writing the database failed; check the disk</translation>
    </message>
    <message>
        <source>数据库文件已损坏，请从备份恢复</source>
        <translation>The database file is damaged; restore it from a backup</translation>
    </message>
    <message>
        <source>磁盘空间不足，数据未保存</source>
        <translation>The disk is full; nothing was saved</translation>
    </message>
    <message>
        <source>无法打开数据库文件</source>
        <translation>Cannot open the database file</translation>
    </message>
    <message>
        <source>数据过大，无法保存</source>
        <translation>The data are too large to be saved</translation>
    </message>
    <message>
        <source>该文件不是数据库文件</source>
        <translation>The file is not a database</translation>
    </message>
    <message>
        <source>数据库操作失败</source>
        <translation>The database operation failed</translation>
    </message>
    <message>
        <source>数据库连接已断开</source>
        <translation>The connection to the database was lost</translation>
    </message>
    <message>
        <source>数据库拒绝登录，请检查数据库用户和密码</source>
        <translation>The database refused the log-in; check its user and password</translation>
    </message>
    <message>
        <source>数据库不存在</source>
        <translation>The database does not exist</translation>
    </message>
    <message>
        <source>数据库繁忙，请稍后重试</source>
        <translation>The database is busy; try again later</translation>
    </message>
    <message>
        <source>数据库用户的权限不足</source>
        <translation>The database user lacks privileges</translation>
    </message>
    <message>
        <source>数据库连接数已满，请稍后重试</source>
        <translation>The database has too many connections; try again later</translation>
    </message>
    <message>
        <source>数据库资源不足，请稍后重试</source>
        <translation>The database lacks resources; try again later</translation>
    </message>
    <message>
        <source>数据库操作超时，请稍后重试</source>
        <translation>The database operation timed out; try again later</translation>
    </message>
    <message>
        <source>记录已存在</source>
        <translation>The record already exists</translation>
    </message>
    <message>
        <source>数据不符合数据库约束</source>
        <translation>The data violate a constraint of the database</translation>
    </message>
    <message>
        <source>数据库连接在保存时中断，无法确定操作是否已执行，请刷新后确认</source>
        <translation>The connection to the database was lost while saving; it is unknown whether the operation was carried out; refresh and check</translation>
    </message>
    <message numerus="yes">
        <source>有%n处错误，未导入任何数据</source>
        <translation>
            <numerusform>%n error; nothing was imported</numerusform>
            <numerusform>%n errors; nothing was imported</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>发现%n个问题
</source>
        <translation>
            <numerusform>%n problem found
</numerusform>
            <numerusform>%n problems found
</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>已清理 %n 条
</source>
        <translation>
            <numerusform>%n row removed
</numerusform>
            <numerusform>%n rows removed
</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>登录失败次数过多，请%n秒后再试</source>
        <translation>
            <numerusform>Too many failed log-ins; try again in %n second</numerusform>
            <numerusform>Too many failed log-ins; try again in %n seconds</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>另有%n次同类操作被拒绝，没有逐条记录</source>
        <translation>
            <numerusform>%n more attempt of the same kind was refused and not recorded</numerusform>
            <numerusform>%n more attempts of the same kind were refused and not recorded one by one</numerusform>
        </translation>
    </message>
    <message>
        <source>“%1”%2</source>
        <translation>&quot;%1&quot; %2</translation>
    </message>
    <message>
        <source>已取消创建示例数据</source>
        <translation>The creation of sample data was cancelled</translation>
    </message>
    <message>
        <source>示例数据的数量超出范围：分系统1至20个，每个分系统至少60个账号，证券分类最多20000个，证券最多100000只</source>
        <translation>The amounts of sample data are out of range: 1 to 20 sub-systems, at least 60 accounts each, at most 20000 security categories and 100000 securities</translation>
    </message>
    <message>
        <source>数据库中已有数据，不能再生成示例数据</source>
        <translation>The database already has data, so no sample data can be generated</translation>
    </message>
    <message>
        <source>按时间倒序列出谁修改或试图修改了什么</source>
        <translation>Show who changed or tried to change what, the latest first.</translation>
    </message>
    <message>
        <source>包括每一次修改和每一次被拒绝的操作，也包括本工具的操作。时间按本机时区；--since 和 --until 包含所指定的时间：日期包含整天，秒包含整秒。</source>
        <translation>Every change and every refused attempt is there, those of this tool as well. Times are those of this machine&apos;s time zone; --since and --until include what they name: a date its whole day, a second its whole second.</translation>
    </message>
    <message>
        <source>只列出该用户的操作</source>
        <translation>Only what this log-in did.</translation>
    </message>
    <message>
        <source>只列出与该编号的账号组有关的操作，包括其风控配置</source>
        <translation>Only what concerns the group with this id, its risk configuration included.</translation>
    </message>
    <message>
        <source>同上，以名称指定账号组</source>
        <translation>The same for the group with this name.</translation>
    </message>
    <message>
        <source>只列出该时间以后的操作：2026-01-05、&apos;2026-01-05 09:30&apos;、&apos;2026-01-05 09:30:15&apos;</source>
        <translation>Only from this time on: 2026-01-05, &apos;2026-01-05 09:30&apos;, &apos;2026-01-05 09:30:15&apos;.</translation>
    </message>
    <message>
        <source>只列出该时间以前的操作</source>
        <translation>Only up to this time.</translation>
    </message>
    <message>
        <source>只列出 ok、refused 或某一种结果，如 conflict 或其编号</source>
        <translation>Only &apos;ok&apos;, &apos;refused&apos;, or one outcome such as &apos;conflict&apos; or its number.</translation>
    </message>
    <message>
        <source>最多列出的条数，0 表示全部</source>
        <translation>How many rows at most; 0 for all.</translation>
    </message>
    <message>
        <source>同时列出变更前后的内容</source>
        <translation>With the state before and after.</translation>
    </message>
    <message>
        <source>备份文件</source>
        <translation>The backup.</translation>
    </message>
    <message>
        <source>将数据库此刻的内容复制到一个文件并校验</source>
        <translation>Copy the database as it is at this moment into one file, and verify it.</translation>
    </message>
    <message>
        <source>数据库可以正在使用。副本打开并确认每一页和每一处引用完好之后，文件才会出现；文件以校验和结尾。旧版本的数据库可以在新版本修改之前备份。</source>
        <translation>The database may be in use. The file appears when the copy has been opened and every page and reference of it found sound, and ends with a checksum. A database of an older version can be backed up before the new version changes it.</translation>
    </message>
    <message>
        <source>PostgreSQL 数据库由 pg_dump 以自定义格式写出，再由 pg_restore 读取检查；集群还需要持续归档。</source>
        <translation>A PostgreSQL database is written by pg_dump in its custom format and read again by pg_restore; a cluster needs continuous archiving besides.</translation>
    </message>
    <message>
        <source>替换已有的文件</source>
        <translation>Replace files that are there.</translation>
    </message>
    <message>
        <source>检查备份是否完整、未被改动且属于本系统</source>
        <translation>Look whether a backup is whole, unchanged and nothing but ours.</translation>
    </message>
    <message>
        <source>校验和能发现任何一个字节的改动。没有校验和的文件由其他程序或旧版本产生，只检查其结构，结果中会说明。含有数据服务所没有的表、视图、索引或触发器的文件会被拒绝。</source>
        <translation>The checksum tells any change of a byte. A file without one, made by another program or an older version, is checked as far as its structure goes, and the result says so. Tables, views, indexes and triggers that the data service doesn&apos;t have are refused.</translation>
    </message>
    <message>
        <source>用备份替换数据库</source>
        <translation>Put a backup in place of the database.</translation>
    </message>
    <message>
        <source>首先校验备份。数据库正被任何程序打开时会被拒绝：请停止数据服务。使用 --force 时仍会在一瞬间替换，那些程序随即看到备份的内容；不可用的数据库文件会改名保留。</source>
        <translation>The backup is verified first. A database that any program has open is refused: stop the data service. With --force it is replaced all the same, at one moment, and those programs see the content of the backup; a file that isn&apos;t a usable database is kept under another name.</translation>
    </message>
    <message>
        <source>备份之后的修改会丢失，审计记录也不例外。每个分系统的审计记录都会写明备份已恢复以及由谁恢复。</source>
        <translation>Changes made after the backup are lost, those in the audit too. Every sub-system&apos;s audit says that and by whom the backup was restored.</translation>
    </message>
    <message>
        <source>编号不会重复使用：新的账号组和限额的编号大于备份和被替换数据库用过的全部编号，每个账号组和风控配置都得到新的修订，因此客户端先前读取的内容不能再保存。被替换的数据库不存在、无法读取或正在使用时，编号和修订会跳过一百万以上。</source>
        <translation>No number is given out twice: new groups and limits get numbers above all that the backup and the replaced database have used, and every group and risk configuration gets a new revision, so that what a client read before can&apos;t be saved any more. When the replaced database is missing, can&apos;t be read or is in use, numbers and revisions jump by a million or more.</translation>
    </message>
    <message>
        <source>即使数据库正在使用或文件不是数据库，也进行恢复</source>
        <translation>Restore over a database in use, or over a file that isn&apos;t one.</translation>
    </message>
    <message>
        <source>检查违反规则或自相矛盾的数据</source>
        <translation>Look for what contradicts the rules or itself.</translation>
    </message>
    <message>
        <source>数据库的每一页和每一处引用；账号组中属于其他分系统或机构、已销户或被排除的账号；没有账号的账号组，无论有无规则；无法读取的风控配置和未知字段；同一交易类型的两份名单；同时在一个账号组黑名单和白名单中的证券；已不存在或不能豁免的分类；今天已不能保存的限额和邮件规则；以及包含同一账号而互相矛盾的账号组：对同一交易类型和方向，一组将证券列入白名单，另一组列入黑名单。</source>
        <translation>Every page and reference of the database; accounts of a group that belong to another sub-system or institution, that are closed or excluded; groups without accounts, with and without rules; risk configurations and unknown fields that can&apos;t be read; two lists of one trade type; securities that are on the black and the white list of one group; categories that are gone or must not be exempt; limits and e-mail rules that could not be saved today; and groups that share an account and contradict each other, one having a security on its white list and the other on its black list for the same trade type and direction.</translation>
    </message>
    <message>
        <source>缺少修订的历史；与最后一次修改不符的账号组和配置；会被重复使用的编号。</source>
        <translation>Histories with missing revisions; groups and configurations that are not what their last change left; numbers that would be given out again.</translation>
    </message>
    <message>
        <source>不修改任何内容。没有 --server 时检查全部分系统。发现问题时退出码为 4。</source>
        <translation>Nothing is changed. Without --server all sub-systems are looked at. The exit code is 4 when anything was found.</translation>
    </message>
    <message>
        <source>用法：qav-admin &lt;命令&gt; [选项] [参数]
管理数据服务的数据库。

命令：
</source>
        <translation>Usage: qav-admin &lt;command&gt; [options] [arguments]
Administers the database of the data service.

Commands:
</translation>
    </message>
    <message>
        <source>命令：
</source>
        <translation>Commands:
</translation>
    </message>
    <message>
        <source>
用 qav-admin &lt;命令&gt; --help 查看命令的说明。</source>
        <translation>
&apos;qav-admin &lt;command&gt; --help&apos; describes a command.</translation>
    </message>
    <message>
        <source>用法：qav-admin %1 [选项]%2
</source>
        <translation>Usage: qav-admin %1 [options]%2
</translation>
    </message>
    <message>
        <source>数据库：文件，或 postgresql://user@host1,host2/database；缺省时由环境变量 QAV_STORE 指定</source>
        <translation>The database: a file, or postgresql://user@host1,host2/database. Without it the environment variable QAV_STORE names it.</translation>
    </message>
    <message>
        <source>其他程序正在写入时最多等待多久</source>
        <translation>How long to wait for somebody else who writes.</translation>
    </message>
    <message>
        <source>分系统的名称或标识，只有一个时可以省略</source>
        <translation>The sub-system, by name or tag; may be left out when there is only one.</translation>
    </message>
    <message>
        <source>为谁进行修改，审计记录除工具的使用者外也会写明</source>
        <translation>For whom the change is made; the audit names them beside the person who runs the tool.</translation>
    </message>
    <message>
        <source>以 JSON 输出结果</source>
        <translation>Write the result as JSON.</translation>
    </message>
    <message>
        <source>显示该命令的说明</source>
        <translation>Describe the command.</translation>
    </message>
    <message>
        <source>从 CSV 文件导入基础数据和账号组，要么全部导入，要么都不导入</source>
        <translation>Import master data and account groups from CSV files, all or nothing.</translation>
    </message>
    <message>
        <source>文件编码为 UTF-8（可带字节顺序标记）或 GB18030；两者皆可的文件会被拒绝，除非用 --encoding 指定。第一行是列名，中文或英文。全部导入是一个事务：只要有一行错误，就什么都不保存；其余各行仍会检查，一次运行即可列出全部原因。已存在的记录采用文件中的值，不删除任何记录。</source>
        <translation>The files are UTF-8, with or without byte order mark, or GB18030; one that could be either is refused, unless --encoding tells. The first row names the columns, in Chinese or English. Everything is one transaction: one bad row, and nothing is stored. All rows are checked all the same, so that one run shows every reason. What exists already takes the values of the file; nothing is deleted.</translation>
    </message>
    <message>
        <source>使用 --dry-run 时列出每一行：新增、变更（及前后的值）、不变或错误（及原因），不保存任何内容；否则只列出错误的行。</source>
        <translation>With --dry-run every row is reported: new, changed with the values before and after, unchanged, or refused and why; nothing is stored. Without it the refused rows are reported.</translation>
    </message>
    <message>
        <source>检查并列出每一行，不保存</source>
        <translation>Check and report every row, store nothing.</translation>
    </message>
    <message>
        <source>utf-8 或 gb18030，用于无法判断编码的文件</source>
        <translation>utf-8 or gb18030, for files from which it can&apos;t be told.</translation>
    </message>
    <message>
        <source>以该标识创建 --server 指定的分系统</source>
        <translation>Create the sub-system that --server names, with this tag.</translation>
    </message>
    <message>
        <source>从该目录读取已有的 institutions.csv、categories.csv、securities.csv、accounts.csv、products.csv 和 groups.csv</source>
        <translation>Take institutions.csv, categories.csv, securities.csv, accounts.csv, products.csv and groups.csv from this directory, those that are there.</translation>
    </message>
    <message>
        <source>%1 的 CSV 文件</source>
        <translation>CSV file of %1.</translation>
    </message>
    <message>
        <source>将基础数据和账号组导出为 CSV 文件</source>
        <translation>Export master data and account groups to CSV files.</translation>
    </message>
    <message>
        <source>全部文件反映同一时刻。导出的内容可以再次导入而不产生任何变化。全部文件完成之后才会出现。没有账号的账号组不导出。</source>
        <translation>All files show the same moment. What was exported can be imported again and changes nothing. The files appear when all of them are complete. Groups without accounts are left out.</translation>
    </message>
    <message>
        <source>在该目录中为每种数据写一个文件</source>
        <translation>Write one file of each kind into this directory.</translation>
    </message>
    <message>
        <source>utf-8（缺省）、utf-8-bom 或 gb18030</source>
        <translation>utf-8 (default), utf-8-bom or gb18030.</translation>
    </message>
    <message>
        <source>使文件可以安全地用电子表格打开：代码写作 =&quot;0012&quot; 以保留前导零，会被当作公式的名称前加撇号</source>
        <translation>Make the files safe in spreadsheets: codes stand as =&quot;0012&quot; and keep their zeros, names that would be calculated get an apostrophe in front.</translation>
    </message>
    <message>
        <source>要写入的 %1 的 CSV 文件</source>
        <translation>CSV file of %1 to write.</translation>
    </message>
    <message>
        <source>账号组的编号</source>
        <translation>The group, by its number.</translation>
    </message>
    <message>
        <source>账号组的名称，也可以是只有一个账号组用过的旧名称</source>
        <translation>The group, by its name; a former name will do as long as only one group had it.</translation>
    </message>
    <message>
        <source>该时间的状态：2026-01-05（当天结束时）、&apos;2026-01-05 09:30&apos;、&apos;2026-01-05 09:30:15&apos;</source>
        <translation>As it was at this time: 2026-01-05 (its end), &apos;2026-01-05 09:30&apos;, &apos;2026-01-05 09:30:15&apos;.</translation>
    </message>
    <message>
        <source>该修订的状态</source>
        <translation>As this revision left it.</translation>
    </message>
    <message>
        <source>列出分系统的账号组</source>
        <translation>List the groups of a sub-system.</translation>
    </message>
    <message>
        <source>列出账号组的修改，也包括已删除的账号组</source>
        <translation>List the changes of a group, of one that is gone as well.</translation>
    </message>
    <message>
        <source>显示账号组及其风控配置现在或过去的状态</source>
        <translation>Show a group and its risk configuration, now or as they were.</translation>
    </message>
    <message>
        <source>账号和机构显示现在的名称；历史中保存的是当时的账号和机构。</source>
        <translation>Accounts and institutions are named as they are today; history keeps which they were.</translation>
    </message>
    <message>
        <source>使用 --revision 时显示该次修改当时的配置。</source>
        <translation>With --revision the configuration is the one of the time of that change.</translation>
    </message>
    <message>
        <source>列出账号组风控配置的修改</source>
        <translation>List the changes of a group&apos;s risk configuration.</translation>
    </message>
    <message>
        <source>显示账号组的风控配置现在或过去的状态</source>
        <translation>Show the risk configuration of a group, now or as it was.</translation>
    </message>
    <message>
        <source>列出分系统的机构</source>
        <translation>List the institutions of a sub-system.</translation>
    </message>
    <message>
        <source>添加机构</source>
        <translation>Add an institution.</translation>
    </message>
    <message>
        <source>修改机构的名称</source>
        <translation>Give an institution another name.</translation>
    </message>
    <message>
        <source>只清理更早的：2026-01-05、&apos;2026-01-05 09:30&apos;、&apos;2026-01-05 09:30:15&apos;</source>
        <translation>Only what is older: 2026-01-05, &apos;2026-01-05 09:30&apos;, &apos;2026-01-05 09:30:15&apos;.</translation>
    </message>
    <message>
        <source>清理旧的审计记录</source>
        <translation>Remove old rows of the audit.</translation>
    </message>
    <message>
        <source>数据服务可以同时运行：记录分小批清理，其间其他程序可以写入。一条审计记录写明谁清理了何时以前的多少条记录，这样的记录永不清理。命令中断时，该记录写明已清理的数量。账号组和风控配置的历史和过去状态保留不变。</source>
        <translation>The service may run meanwhile: rows go in small transactions, between which others write. An audit row tells who removed how many rows from before which time; such rows are never removed. When the command is interrupted, the row tells what is gone so far. History and past states of groups and risk configurations stay.</translation>
    </message>
    <message>
        <source>SQLite 文件的大小不变，空出的空间会再次使用。</source>
        <translation>A SQLite file keeps its size; the room is used again.</translation>
    </message>
    <message>
        <source>清理旧的操作应答</source>
        <translation>Remove old answers to operations.</translation>
    </message>
    <message>
        <source>操作日志保存对客户端每个操作的应答，使重发的操作只执行一次。最近 %1 小时的应答会保留。其余说明见 audit prune。</source>
        <translation>The log of operations keeps the answer to each operation of a client, so that one that is sent again is carried out once. Answers of the last %1 hours stay. For the rest see &apos;audit prune&apos;.</translation>
    </message>
    <message>
        <source>将账号组过去的修订保存为新的修订</source>
        <translation>Store a past revision of a group as a new one.</translation>
    </message>
    <message>
        <source>按现在的规则检查：其间已销户、被排除或变更机构的账号会被拒绝，除非它仍在账号组中；已被其他账号组使用的名称和已不存在的机构也会被拒绝。此时不保存任何内容。</source>
        <translation>Today&apos;s rules apply: an account that was closed, excluded or moved meanwhile is refused unless it is still in the group, as are a name that another group has taken and an institution that is gone. Nothing is stored then.</translation>
    </message>
    <message>
        <source>已删除的账号组会以新的编号重新添加，并带有当时的风控配置。仍存在的账号组的配置保持不变，可用 risk restore 恢复。</source>
        <translation>A group that was deleted is added again, with a new number and with the risk configuration that went with it. The configuration of a group that is there stays as it is; &apos;risk restore&apos; restores that.</translation>
    </message>
    <message>
        <source>将账号组风控配置过去的修订保存为新的修订</source>
        <translation>Store a past revision of a group&apos;s risk configuration as a new one.</translation>
    </message>
    <message>
        <source>按现在的规则检查：已不存在或已成为内部分类的分类会被拒绝，除非配置中仍有它。邮件规则是配置的一部分。已删除的限额得到新的编号。修订 1 是每个账号组的初始配置。</source>
        <translation>Today&apos;s rules apply: a category that is gone or has become internal is refused unless the configuration still has it. E-mail rules are part of the configuration. Limits that are gone get a new number. Revision 1 is the configuration that every group begins with.</translation>
    </message>
    <message>
        <source>列出权限的编号、名称和拥有者</source>
        <translation>List rights with numbers and names, and who has them.</translation>
    </message>
    <message>
        <source>只列出该用户的权限</source>
        <translation>Only the rights of this user.</translation>
    </message>
    <message>
        <source>right list 中的编号、代码或名称；all 表示全部权限</source>
        <translation>A number, a key or a name of &apos;right list&apos;; &apos;all&apos; for every right.</translation>
    </message>
    <message>
        <source>授予用户权限</source>
        <translation>Give rights to a user.</translation>
    </message>
    <message>
        <source>收回用户的权限</source>
        <translation>Take rights from a user.</translation>
    </message>
    <message>
        <source>列出数据库中的分系统</source>
        <translation>List the sub-systems of the database.</translation>
    </message>
    <message>
        <source>创建分系统，数据库不存在时一并创建</source>
        <translation>Create a sub-system, and the database when it is missing.</translation>
    </message>
    <message>
        <source>分系统的名称</source>
        <translation>What people call it.</translation>
    </message>
    <message>
        <source>记录所带的标识，以后不能修改</source>
        <translation>What its records carry; it can&apos;t be changed.</translation>
    </message>
    <message>
        <source>列出分系统的用户</source>
        <translation>List the users of a sub-system.</translation>
    </message>
    <message>
        <source>创建用户，密码为标准输入的第一行</source>
        <translation>Create a user; the password is the first line of standard input.</translation>
    </message>
    <message>
        <source>密码至少 8 个字符。在终端上会提示输入，且不显示。</source>
        <translation>The password has at least 8 characters. On a terminal it is asked for and not shown.</translation>
    </message>
    <message>
        <source>绑定机构的用户只能查看和修改该机构的记录。</source>
        <translation>A user who is bound to an institution sees and changes that institution&apos;s records only.</translation>
    </message>
    <message>
        <source>其他人看到的姓名，缺省为用户名</source>
        <translation>The name that others see; the log-in without it.</translation>
    </message>
    <message>
        <source>用户所绑定机构的编号或名称</source>
        <translation>The institution that the user is bound to, by id or name.</translation>
    </message>
    <message>
        <source>权限，以逗号分隔，写法同 right grant</source>
        <translation>Rights, separated by commas, as &apos;right grant&apos; takes them.</translation>
    </message>
    <message>
        <source>立即停用用户</source>
        <translation>Take a user&apos;s access away, at once.</translation>
    </message>
    <message>
        <source>已登录的会话的请求也会被拒绝。</source>
        <translation>A request of a session that is open already is refused, too.</translation>
    </message>
    <message>
        <source>重新启用用户</source>
        <translation>Give a user access again.</translation>
    </message>
    <message>
        <source>修改用户的密码，新密码为标准输入的第一行</source>
        <translation>Give a user another password, the first line of standard input.</translation>
    </message>
    <message>
        <source>已登录的会话在下一个请求时结束，用户须用新密码重新登录。</source>
        <translation>Sessions that are open end with their next request: the user logs in again with the new password.</translation>
    </message>
    <message>
        <source>将用户绑定到机构，或解除绑定</source>
        <translation>Bind a user to an institution, or to none.</translation>
    </message>
    <message>
        <source>机构的编号或名称</source>
        <translation>The institution, by id or name.</translation>
    </message>
    <message>
        <source>用户可以查看全部机构</source>
        <translation>The user sees every institution.</translation>
    </message>
    <message>
        <source>配置文件，同时读取旁边的 conf.d/*.toml</source>
        <translation>Configuration file. Files conf.d/*.toml beside it are read, too.</translation>
    </message>
    <message>
        <source>数据库文件或 postgresql:// 地址，代替配置中的数据库</source>
        <translation>Database file or postgresql:// URL, in place of the configuration&apos;s.</translation>
    </message>
    <message>
        <source>显示每项设置的来源，列出全部错误，然后结束</source>
        <translation>Show where each setting comes from, report every mistake, and end.</translation>
    </message>
    <message>
        <source>通过网络向客户端提供数据库中的分系统</source>
        <translation>Serves the sub-systems of a store to clients on the network.</translation>
    </message>
    <message>
        <source>分系统的数量</source>
        <translation>Number of sub-systems.</translation>
    </message>
    <message>
        <source>账号组的数量，全部分系统合计</source>
        <translation>Account groups, all sub-systems together.</translation>
    </message>
    <message>
        <source>账号的数量，全部分系统合计</source>
        <translation>Accounts, all sub-systems together.</translation>
    </message>
    <message>
        <source>每个账号组平均的账号数量</source>
        <translation>Accounts of a group, on average.</translation>
    </message>
    <message>
        <source>每个分系统的证券分类数量</source>
        <translation>Security categories of each sub-system.</translation>
    </message>
    <message>
        <source>每个分系统的证券数量</source>
        <translation>Securities of each sub-system.</translation>
    </message>
    <message>
        <source>随机种子，相同的种子产生相同的数据</source>
        <translation>The same seed gives the same data.</translation>
    </message>
    <message>
        <source>数据库：文件（不存在时创建），或 postgresql://user@host/database</source>
        <translation>Database: a file, created when it is missing, or postgresql://user@host/database.</translation>
    </message>
    <message>
        <source>在新数据库中生成示例数据</source>
        <translation>Fills a new database with sample data.</translation>
    </message>
    <message>
        <source>--%1 应为数字</source>
        <translation>--%1 has to be a number</translation>
    </message>
    <message>
        <source>已生成：分系统 %1，账号 %2，账号组 %3，用时 %4 秒</source>
        <translation>Made: %1 sub-systems, %2 accounts, %3 account groups in %4 s</translation>
    </message>
    <message>
        <source>查看审计记录和检查结果</source>
        <translation>Read the audit and the findings of the check</translation>
    </message>
    <message>
        <source>账号组恢复</source>
        <translation>Group restore</translation>
    </message>
    <message>
        <source>您没有查看风控设置的权限</source>
        <translation>You have no right to see risk settings</translation>
    </message>
    <message>
        <source>内容过大，请查看该修订的状态</source>
        <translation>The content is too large; look at the states of the revisions instead</translation>
    </message>
    <message>
        <source>部分内容不能显示</source>
        <translation>Part of the content cannot be shown</translation>
    </message>
    <message>
        <source>正在进行另一次检查，请稍后再试</source>
        <translation>Another check is running; please try again later</translation>
    </message>
    <message>
        <source>数据过多，请用 qav-admin check 检查</source>
        <translation>There are too many data; please use qav-admin check</translation>
    </message>
    <message>
        <source>编辑账号组，移除该账号。</source>
        <translation>Edit the group and remove the account.</translation>
    </message>
    <message>
        <source>打开账号组的风控设置，改正所列内容后保存，或恢复到较早的修订。</source>
        <translation>Open the risk settings of the group, correct what is listed and save, or restore an earlier revision.</translation>
    </message>
    <message>
        <source>打开账号组的风控设置，移除该分类，或改选其他分类后保存。</source>
        <translation>Open the risk settings of the group, remove the category or choose another one, and save.</translation>
    </message>
    <message>
        <source>请数据服务的管理员检查数据库，必要时从备份恢复。</source>
        <translation>Ask an administrator of the data service to check the database, and to restore a backup if necessary.</translation>
    </message>
    <message>
        <source>其他分系统的账号</source>
        <translation>Account of another sub-system</translation>
    </message>
    <message>
        <source>其他机构的账号</source>
        <translation>Account of another institution</translation>
    </message>
    <message>
        <source>已销户的账号</source>
        <translation>Closed account</translation>
    </message>
    <message>
        <source>不允许加入账号组的账号</source>
        <translation>Account that no group may have</translation>
    </message>
    <message>
        <source>没有账号的账号组</source>
        <translation>Group without accounts</translation>
    </message>
    <message>
        <source>为账号组添加账号，或删除账号组。</source>
        <translation>Add accounts to the group, or delete it.</translation>
    </message>
    <message>
        <source>没有账号却有风控的账号组</source>
        <translation>Group with risk settings but without accounts</translation>
    </message>
    <message>
        <source>为账号组添加账号，使风控生效，或删除账号组。</source>
        <translation>Add accounts to the group, so that its settings take effect, or delete it.</translation>
    </message>
    <message>
        <source>无法读取的风控配置</source>
        <translation>Unreadable risk configuration</translation>
    </message>
    <message>
        <source>请管理员将风控配置恢复到可以读取的修订。</source>
        <translation>Ask an administrator to restore a revision of the configuration that can be read.</translation>
    </message>
    <message>
        <source>无法读取的附加字段</source>
        <translation>Unreadable additional fields</translation>
    </message>
    <message>
        <source>重复的黑白名单</source>
        <translation>Repeated list</translation>
    </message>
    <message>
        <source>同时在黑名单和白名单中的证券</source>
        <translation>Security on the black and the white list</translation>
    </message>
    <message>
        <source>无效的黑白名单条目</source>
        <translation>Invalid list entry</translation>
    </message>
    <message>
        <source>不存在的证券分类</source>
        <translation>Category that does not exist</translation>
    </message>
    <message>
        <source>不能使用的证券分类</source>
        <translation>Category that cannot be used</translation>
    </message>
    <message>
        <source>无效的资产组合限额</source>
        <translation>Invalid portfolio limit</translation>
    </message>
    <message>
        <source>无效的邮件规则</source>
        <translation>Invalid e-mail rule</translation>
    </message>
    <message>
        <source>会被重复使用的编号</source>
        <translation>Number that would be used again</translation>
    </message>
    <message>
        <source>不完整的历史</source>
        <translation>Incomplete history</translation>
    </message>
    <message>
        <source>与历史不符的数据</source>
        <translation>Data that differ from their history</translation>
    </message>
    <message>
        <source>互相矛盾的账号组</source>
        <translation>Contradicting groups</translation>
    </message>
    <message>
        <source>将账号从其中一个账号组移除，或修改其中一组的黑白名单。</source>
        <translation>Remove the account from one of the groups, or change the lists of one of them.</translation>
    </message>
    <message>
        <source>请指定要恢复的修订</source>
        <translation>Please name the revision to restore</translation>
    </message>
    <message>
        <source>账号组恢复的数据过大，已被拒绝</source>
        <translation>The data of the restore are too large and were refused</translation>
    </message>
    <message>
        <source>查询条件无效</source>
        <translation>The conditions of the query are invalid</translation>
    </message>
</context>
</TS>
