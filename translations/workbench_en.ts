<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en_GB" sourcelanguage="zh_CN">
<context>
    <name>workbench</name>
    <message>
        <source>数据服务故障：%1</source>
        <translation>The data service failed: %1</translation>
    </message>
    <message>
        <source>无法创建数据目录：%1</source>
        <translation>Cannot create the data folder: %1</translation>
    </message>
    <message>
        <source>登录</source>
        <translation>Log in</translation>
    </message>
    <message>
        <source>模块开关</source>
        <translation>Module switches</translation>
    </message>
    <message>
        <source>数据库</source>
        <translation>Database</translation>
    </message>
    <message>
        <source>分系统</source>
        <translation>Sub-system</translation>
    </message>
    <message>
        <source>SDK 版本不符：插件 %1，客户端 %2</source>
        <translation>The SDK versions do not match: plug-in %1, client %2</translation>
    </message>
    <message>
        <source>库文件不存在：%1</source>
        <translation>The library does not exist: %1</translation>
    </message>
    <message>
        <source>当前用户没有所需权限</source>
        <translation>The current user has none of the rights required</translation>
    </message>
    <message>
        <source>可用</source>
        <translation>Available</translation>
    </message>
    <message>
        <source>已加载</source>
        <translation>Loaded</translation>
    </message>
    <message>
        <source>无权限</source>
        <translation>No right</translation>
    </message>
    <message>
        <source>无法使用</source>
        <translation>Unusable</translation>
    </message>
    <message>
        <source>库无法加载：%1</source>
        <translation>The library cannot be loaded: %1</translation>
    </message>
    <message>
        <source>库中没有类 %1</source>
        <translation>The library has no class %1</translation>
    </message>
    <message>
        <source>类 %1 不是可停靠的面板</source>
        <translation>Class %1 is not a dockable panel</translation>
    </message>
    <message>
        <source>类 %1 没有可调用的构造函数</source>
        <translation>Class %1 has no invokable constructor</translation>
    </message>
    <message>
        <source>创建面板失败：%1</source>
        <translation>The panel could not be created: %1</translation>
    </message>
    <message>
        <source>创建面板失败：未知异常</source>
        <translation>The panel could not be created: unknown exception</translation>
    </message>
    <message>
        <source>没有可用的分系统，无法登录</source>
        <translation>No sub-system is available, so you cannot log in</translation>
    </message>
    <message>
        <source>%1：%2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>--%1：需要不小于 %2 的整数</source>
        <translation>--%1: has to be an integer of at least %2</translation>
    </message>
    <message>
        <source>--server：%1</source>
        <translation>--server: %1</translation>
    </message>
    <message>
        <source>--ca 和 --plain 需要 --server</source>
        <translation>--ca and --plain need --server</translation>
    </message>
    <message>
        <source>--database、--server 和 --servers 只能使用其中一种</source>
        <translation>Only one of --database, --server and --servers may be used</translation>
    </message>
    <message>
        <source>数据库文件，不存在时以示例数据创建</source>
        <translation>Database file; created with sample data if it does not exist.</translation>
    </message>
    <message>
        <source>新数据库的账号组数量</source>
        <translation>Number of account groups in a new database.</translation>
    </message>
    <message>
        <source>新数据库的账号数量</source>
        <translation>Number of accounts in a new database.</translation>
    </message>
    <message>
        <source>通过网络连接的分系统，可重复</source>
        <translation>Sub-system to connect to over the network; may be repeated.</translation>
    </message>
    <message>
        <source>--server 信任的证书颁发机构（PEM）</source>
        <translation>Certificate authorities that --server trusts (PEM).</translation>
    </message>
    <message>
        <source>--server 不加密，只能用于本机</source>
        <translation>Connect to --server without encryption; only on this machine.</translation>
    </message>
    <message>
        <source>分系统列表文件</source>
        <translation>File with the list of sub-systems.</translation>
    </message>
    <message>
        <source>其他插件目录，可重复</source>
        <translation>Another folder with plug-ins; may be repeated.</translation>
    </message>
    <message>
        <source>保存布局和设置的文件</source>
        <translation>File that keeps layout and settings.</translation>
    </message>
    <message>
        <source>模块开关文件（Lua）</source>
        <translation>File with the module switches (Lua).</translation>
    </message>
    <message>
        <source>附加主题目录</source>
        <translation>Folder with more themes.</translation>
    </message>
    <message>
        <source>主题：dark 或 light</source>
        <translation>Theme: dark or light.</translation>
    </message>
    <message>
        <source>用户名</source>
        <translation>User name</translation>
    </message>
    <message>
        <source>从标准输入读取密码并直接登录</source>
        <translation>Read the password from standard input and log in at once.</translation>
    </message>
    <message>
        <source>风控管理客户端</source>
        <translation>Risk Administration Client</translation>
    </message>
    <message>
        <source>多余的参数：%1</source>
        <translation>Surplus arguments: %1</translation>
    </message>
    <message>
        <source>--password-from-stdin 需要 --user</source>
        <translation>--password-from-stdin needs --user</translation>
    </message>
    <message>
        <source>清单中缺少“%1”</source>
        <translation>The manifest lacks &quot;%1&quot;</translation>
    </message>
    <message>
        <source>清单中的“rights”不是权限编号的列表</source>
        <translation>&quot;rights&quot; in the manifest is not a list of rights</translation>
    </message>
    <message>
        <source>无法读取清单：%1</source>
        <translation>Cannot read the manifest: %1</translation>
    </message>
    <message>
        <source>清单过大</source>
        <translation>The manifest is too large</translation>
    </message>
    <message>
        <source>清单不是 JSON 对象</source>
        <translation>The manifest is not a JSON object</translation>
    </message>
    <message>
        <source>清单格式错误：第 %1 字节，%2</source>
        <translation>The manifest is malformed: byte %1, %2</translation>
    </message>
    <message>
        <source>类名“%1”无效</source>
        <translation>&quot;%1&quot; is not a valid class name</translation>
    </message>
    <message>
        <source>图标“%1”无效</source>
        <translation>&quot;%1&quot; is not a valid icon</translation>
    </message>
    <message>
        <source>库文件名“%1”无效</source>
        <translation>&quot;%1&quot; is not a valid library name</translation>
    </message>
    <message>
        <source>SDK 版本“%1”无效</source>
        <translation>&quot;%1&quot; is not a valid SDK version</translation>
    </message>
    <message>
        <source>未知的设置项：%1</source>
        <translation>Unknown setting: %1</translation>
    </message>
    <message>
        <source>plain 只能是 true 或 false</source>
        <translation>plain has to be true or false</translation>
    </message>
    <message>
        <source>port 需要 1 至 65535 的整数</source>
        <translation>port has to be an integer from 1 to 65535</translation>
    </message>
    <message>
        <source>无法读取分系统列表：%1</source>
        <translation>Cannot read the list of sub-systems: %1</translation>
    </message>
    <message>
        <source>%1 [%2]：%3</source>
        <translation>%1 [%2]: %3</translation>
    </message>
    <message>
        <source>分系统列表格式错误或为空：%1</source>
        <translation>The list of sub-systems is malformed or empty: %1</translation>
    </message>
    <message>
        <source>应为“名称,标识,主机:端口”：%1</source>
        <translation>Should be &quot;name,tag,host:port&quot;: %1</translation>
    </message>
    <message>
        <source>分系统的名称或标识为空</source>
        <translation>The name or tag of a sub-system is empty</translation>
    </message>
    <message>
        <source>分系统的名称或标识重复：%1（%2）</source>
        <translation>The name or tag of a sub-system is repeated: %1 (%2)</translation>
    </message>
    <message>
        <source>缺少中文字体，请安装后重新启动</source>
        <translation>No Chinese font was found. Install one and start again.</translation>
    </message>
</context>
<context>
    <name>workbench::CAboutDialog</name>
    <message>
        <source>关于</source>
        <translation>About</translation>
    </message>
    <message>
        <source>风控管理客户端 %1
插件 SDK %2

本程序按 Apache License 2.0 许可：
https://www.apache.org/licenses/LICENSE-2.0

本程序使用 Qt %3，按 LGPL 第3版许可。
Qt 的版权归 The Qt Company Ltd. 和其他贡献者所有：
https://www.qt.io/licensing

拼音取自 Unicode 字符数据库和 ICU，版权归 Unicode, Inc. 所有，按 Unicode 许可证使用：
https://www.unicode.org/license.txt

本程序还使用 Boost、Lua、libsodium、OpenSSL、SQLite、PostgreSQL 客户端库、
Breeze 图标和 Noto 字体，版权归各自的作者所有，按各自的许可使用。</source>
        <translation>Risk Administration Client %1
Plug-in SDK %2

This program is licensed under the Apache License 2.0:
https://www.apache.org/licenses/LICENSE-2.0

It uses Qt %3 under the LGPL version 3.
Qt is copyright of The Qt Company Ltd. and other contributors:
https://www.qt.io/licensing

The pinyin readings come from the Unicode Character Database and ICU,
copyright of Unicode, Inc., used under the Unicode License:
https://www.unicode.org/license.txt

It also uses Boost, Lua, libsodium, OpenSSL, SQLite, the PostgreSQL client library,
Breeze icons and Noto fonts, copyright of their authors, under their own licences.</translation>
    </message>
</context>
<context>
    <name>workbench::CChangeNotices</name>
    <message>
        <source>账号组可能已被修改</source>
        <translation>Groups may have changed</translation>
    </message>
    <message numerus="yes">
        <source>%n个账号组已被修改（%1 %2）</source>
        <translation>
            <numerusform>%n group has changed (%1 %2)</numerusform>
            <numerusform>%n groups have changed (%1 %2)</numerusform>
        </translation>
    </message>
    <message>
        <source>账号组“%1”刚刚被%2修改（%3）</source>
        <translation>The group &quot;%1&quot; was just changed by %2 (%3)</translation>
    </message>
</context>
<context>
    <name>workbench::CClientToolBar</name>
    <message>
        <source>添加和编辑账号组</source>
        <translation>Add and edit account groups</translation>
    </message>
    <message>
        <source>风控设置</source>
        <translation>Risk settings</translation>
    </message>
    <message>
        <source>删除账号组</source>
        <translation>Delete account groups</translation>
    </message>
    <message>
        <source>工具栏</source>
        <translation>Tool bar</translation>
    </message>
    <message>
        <source>分系统</source>
        <translation>Sub-system</translation>
    </message>
    <message>
        <source>全部分系统</source>
        <translation>All sub-systems</translation>
    </message>
    <message>
        <source>切换主题</source>
        <translation>Switch theme</translation>
    </message>
    <message>
        <source>%1（%2）</source>
        <translation>%1 (%2)</translation>
    </message>
</context>
<context>
    <name>workbench::CClosableDialog</name>
    <message>
        <source>关闭</source>
        <translation>Close</translation>
    </message>
</context>
<context>
    <name>workbench::CDockTitle</name>
    <message>
        <source>浮动或停靠</source>
        <translation>Float or dock</translation>
    </message>
    <message>
        <source>关闭</source>
        <translation>Close</translation>
    </message>
    <message>
        <source>%1
点击或按F5刷新</source>
        <translation>%1
Click or press F5 to refresh</translation>
    </message>
    <message>
        <source>%1，刷新</source>
        <translation>%1, refresh</translation>
    </message>
    <message>
        <source>%1（%2）</source>
        <translation>%1 (%2)</translation>
    </message>
</context>
<context>
    <name>workbench::CEmptyPanels</name>
    <message>
        <source>未连接分系统
恢复连接后自动刷新</source>
        <translation>No sub-system is connected
The panel refreshes when the connection is back</translation>
    </message>
    <message>
        <source>已选择全部分系统
请在工具栏中选择一个分系统</source>
        <translation>All sub-systems are selected
Choose one in the tool bar</translation>
    </message>
    <message>
        <source>分系统“%1”未连接
恢复连接后自动刷新</source>
        <translation>Sub-system &quot;%1&quot; is not connected
The panel refreshes when the connection is back</translation>
    </message>
    <message>
        <source>分系统“%1”未连接：%2
恢复连接后自动刷新</source>
        <translation>Sub-system &quot;%1&quot; is not connected: %2
The panel refreshes when the connection is back</translation>
    </message>
    <message>
        <source>正在连接分系统“%1”…</source>
        <translation>Connecting to sub-system &quot;%1&quot;…</translation>
    </message>
    <message>
        <source>没有权限：未能登录分系统“%1”
%2</source>
        <translation>No right: you could not log in to sub-system &quot;%1&quot;
%2</translation>
    </message>
</context>
<context>
    <name>workbench::CLogInDialog</name>
    <message>
        <source>登录 - 风控管理客户端</source>
        <translation>Log in - Risk Administration Client</translation>
    </message>
    <message>
        <source>请输入用户名</source>
        <translation>Enter your user name</translation>
    </message>
    <message>
        <source>用户名</source>
        <translation>User name</translation>
    </message>
    <message>
        <source>请输入密码</source>
        <translation>Enter your password</translation>
    </message>
    <message>
        <source>密码</source>
        <translation>Password</translation>
    </message>
    <message>
        <source>退出</source>
        <translation>Quit</translation>
    </message>
    <message>
        <source>正在登录…</source>
        <translation>Logging in…</translation>
    </message>
    <message>
        <source>登录</source>
        <translation>Log in</translation>
    </message>
</context>
<context>
    <name>workbench::CMainMenu</name>
    <message>
        <source>客户端(&amp;C)</source>
        <translation>&amp;Client</translation>
    </message>
    <message>
        <source>切换用户(&amp;U)</source>
        <translation>Switch &amp;user</translation>
    </message>
    <message>
        <source>退出(&amp;X)</source>
        <translation>E&amp;xit</translation>
    </message>
    <message>
        <source>功能(&amp;P)</source>
        <translation>&amp;Panels</translation>
    </message>
    <message>
        <source>面板(&amp;N)</source>
        <translation>Pa&amp;nel</translation>
    </message>
    <message>
        <source>搜索(&amp;S)</source>
        <translation>&amp;Search</translation>
    </message>
    <message>
        <source>刷新当前面板(&amp;R)</source>
        <translation>&amp;Refresh panel</translation>
    </message>
    <message>
        <source>浮动或停靠(&amp;F)</source>
        <translation>&amp;Float or dock</translation>
    </message>
    <message>
        <source>关闭面板(&amp;W)</source>
        <translation>&amp;Close panel</translation>
    </message>
    <message>
        <source>视图(&amp;V)</source>
        <translation>&amp;View</translation>
    </message>
    <message>
        <source>恢复默认布局(&amp;L)</source>
        <translation>Restore default &amp;layout</translation>
    </message>
    <message>
        <source>放大字体(&amp;I)</source>
        <translation>Zoom &amp;in</translation>
    </message>
    <message>
        <source>缩小字体(&amp;O)</source>
        <translation>Zoom &amp;out</translation>
    </message>
    <message>
        <source>默认字体大小(&amp;D)</source>
        <translation>&amp;Default font size</translation>
    </message>
    <message>
        <source>%1主题</source>
        <translation>%1 theme</translation>
    </message>
    <message>
        <source>语言(&amp;G)</source>
        <translation>Langua&amp;ge</translation>
    </message>
    <message>
        <source>帮助(&amp;H)</source>
        <translation>&amp;Help</translation>
    </message>
    <message>
        <source>使用手册和快捷键(&amp;M)</source>
        <translation>&amp;Manual and shortcuts</translation>
    </message>
    <message>
        <source>最近的消息(&amp;R)…</source>
        <translation>&amp;Recent messages…</translation>
    </message>
    <message>
        <source>插件(&amp;P)…</source>
        <translation>&amp;Plug-ins…</translation>
    </message>
    <message>
        <source>关于(&amp;A)…</source>
        <translation>&amp;About…</translation>
    </message>
    <message>
        <source>没有可用的插件</source>
        <translation>No usable plug-ins</translation>
    </message>
</context>
<context>
    <name>workbench::CMainWindow</name>
    <message>
        <source>风控管理客户端</source>
        <translation>Risk Administration Client</translation>
    </message>
    <message>
        <source>提示</source>
        <translation>Note</translation>
    </message>
    <message>
        <source>布局无法保存：%1</source>
        <translation>The layout could not be saved: %1</translation>
    </message>
    <message>
        <source>插件</source>
        <translation>Plug-ins</translation>
    </message>
    <message>
        <source>“%1”无法打开：%2</source>
        <translation>&quot;%1&quot; cannot be opened: %2</translation>
    </message>
    <message>
        <source>没有插件提供“%1”</source>
        <translation>No plug-in provides &quot;%1&quot;</translation>
    </message>
    <message>
        <source>未能登录 %1</source>
        <translation>Not logged in: %1</translation>
    </message>
    <message>
        <source>；</source>
        <translation>; </translation>
    </message>
    <message>
        <source>未能登录：
%1</source>
        <translation>Not logged in:
%1</translation>
    </message>
    <message>
        <source>没有找到插件，已查找的目录：
%1</source>
        <translation>No plug-ins were found in these folders:
%1</translation>
    </message>
    <message>
        <source>没有打开的面板
请从“功能”菜单中选择</source>
        <translation>No panel is open
Choose one from the menu &quot;Panels&quot;</translation>
    </message>
    <message>
        <source>%1：%2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>插件 %1</source>
        <translation>Plug-ins: %1</translation>
    </message>
    <message>
        <source>插件 %1，无法使用 %2</source>
        <translation>Plug-ins: %1, unusable: %2</translation>
    </message>
    <message>
        <source>语言</source>
        <translation>Language</translation>
    </message>
    <message>
        <source>语言将在重新启动客户端后生效</source>
        <translation>The language changes when the client is started again</translation>
    </message>
</context>
<context>
    <name>workbench::CManualDialog</name>
    <message>
        <source>使用手册</source>
        <translation>Manual</translation>
    </message>
    <message>
        <source>目录</source>
        <translation>Contents</translation>
    </message>
    <message>
        <source>正文</source>
        <translation>Text</translation>
    </message>
    <message>
        <source>没有找到使用手册：%1</source>
        <translation>The manual was not found: %1</translation>
    </message>
    <message>
        <source>快捷键和目录</source>
        <translation>Shortcuts and contents</translation>
    </message>
</context>
<context>
    <name>workbench::CMessageListDialog</name>
    <message>
        <source>%1：%2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>最近的消息</source>
        <translation>Recent messages</translation>
    </message>
    <message>
        <source>复制</source>
        <translation>Copy</translation>
    </message>
    <message>
        <source>还没有消息</source>
        <translation>No messages yet</translation>
    </message>
</context>
<context>
    <name>workbench::COpeningDialog</name>
    <message>
        <source>风控管理客户端</source>
        <translation>Risk Administration Client</translation>
    </message>
    <message>
        <source>正在打开数据库…</source>
        <translation>Opening the database…</translation>
    </message>
    <message>
        <source>进度</source>
        <translation>Progress</translation>
    </message>
    <message>
        <source>取消</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>正在取消…</source>
        <translation>Cancelling…</translation>
    </message>
    <message>
        <source>首次启动，正在创建示例数据…</source>
        <translation>First start: creating sample data…</translation>
    </message>
</context>
<context>
    <name>workbench::CPluginDialog</name>
    <message>
        <source>插件</source>
        <translation>Plug-ins</translation>
    </message>
    <message>
        <source>插件列表</source>
        <translation>Plug-ins</translation>
    </message>
    <message>
        <source>名称</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>状态</source>
        <translation>Status</translation>
    </message>
    <message>
        <source>说明</source>
        <translation>Details</translation>
    </message>
    <message>
        <source>SDK 版本</source>
        <translation>SDK version</translation>
    </message>
    <message>
        <source>类</source>
        <translation>Class</translation>
    </message>
    <message>
        <source>清单</source>
        <translation>Manifest</translation>
    </message>
</context>
<context>
    <name>workbench::CRequestStatus</name>
    <message>
        <source>证券分类</source>
        <translation>Security category</translation>
    </message>
    <message>
        <source>账号组</source>
        <translation>Account group</translation>
    </message>
    <message>
        <source>风控设置</source>
        <translation>Risk settings</translation>
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
        <source>机构</source>
        <translation>Institution</translation>
    </message>
    <message>
        <source>证券</source>
        <translation>Security</translation>
    </message>
    <message>
        <source>邮件规则</source>
        <translation>E-mail rules</translation>
    </message>
    <message>
        <source>账号组历史</source>
        <translation>Account group history</translation>
    </message>
    <message>
        <source>账号组状态</source>
        <translation>Account group state</translation>
    </message>
    <message>
        <source>审计记录</source>
        <translation>Audit</translation>
    </message>
    <message>
        <source>一致性检查结果</source>
        <translation>Findings of the consistency check</translation>
    </message>
    <message>
        <source>账号组恢复</source>
        <translation>Account group restore</translation>
    </message>
    <message>
        <source>登录</source>
        <translation>Log in</translation>
    </message>
    <message>
        <source>保存%1</source>
        <translation>save %1</translation>
    </message>
    <message>
        <source>查询%1</source>
        <translation>query %1</translation>
    </message>
    <message>
        <source>取消：%1 %2（%3秒）</source>
        <translation>Cancel: %1, %2 (%3 s)</translation>
    </message>
    <message>
        <source>正在等待应答的请求，可以取消</source>
        <translation>Requests that wait for an answer; they can be cancelled</translation>
    </message>
    <message>
        <source>请求%1个，已等待%2秒</source>
        <translation>Requests: %1, waiting for %2 s</translation>
    </message>
    <message>
        <source>全部取消</source>
        <translation>Cancel all</translation>
    </message>
</context>
<context>
    <name>workbench::CRowCounts</name>
    <message>
        <source>清除筛选</source>
        <translation>Clear filter</translation>
    </message>
    <message>
        <source>筛选出%1条，共%2条</source>
        <translation>%1 of %2 rows</translation>
    </message>
    <message>
        <source>共%1条</source>
        <translation>Rows: %1</translation>
    </message>
</context>
<context>
    <name>workbench::CServerStatus</name>
    <message>
        <source>已连接</source>
        <translation>connected</translation>
    </message>
    <message>
        <source>正在连接</source>
        <translation>connecting</translation>
    </message>
    <message>
        <source>未连接</source>
        <translation>not connected</translation>
    </message>
    <message>
        <source>%1：%2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>%1：%2，%3</source>
        <translation>%1: %2, %3</translation>
    </message>
</context>
<context>
    <name>workbench::CSession</name>
    <message>
        <source>%1：%2</source>
        <translation>%1: %2</translation>
    </message>
</context>
</TS>
