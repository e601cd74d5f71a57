<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en_GB" sourcelanguage="zh_CN">
<context>
    <name>QAV</name>
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
        <source>请选择证券分类</source>
        <translation>Choose a security category</translation>
    </message>
    <message>
        <source>请输入阈值</source>
        <translation>Enter a threshold</translation>
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
        <source>启用</source>
        <translation>Enabled</translation>
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
        <source>证券分类</source>
        <translation>Security category</translation>
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
        <source>比较</source>
        <translation>Comparison</translation>
    </message>
    <message>
        <source>阈值</source>
        <translation>Threshold</translation>
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
        <source>备注</source>
        <translation>Remark</translation>
    </message>
    <message>
        <source>操作</source>
        <translation>Operation</translation>
    </message>
    <message>
        <source>资产组合风控</source>
        <translation>Portfolio limits</translation>
    </message>
    <message>
        <source>新增</source>
        <translation>Add</translation>
    </message>
    <message>
        <source>删除</source>
        <translation>Delete</translation>
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
        <source>第%1行%2</source>
        <translation>Row %1: %2</translation>
    </message>
    <message>
        <source>输入名称或拼音</source>
        <translation>Name or pinyin</translation>
    </message>
    <message>
        <source>未连接：没有对应的分系统</source>
        <translation>Not connected: there is no such sub-system</translation>
    </message>
    <message>
        <source>分系统“%1”未连接</source>
        <translation>Sub-system &quot;%1&quot; is not connected</translation>
    </message>
    <message>
        <source>分系统“%1”通信故障</source>
        <translation>Sub-system &quot;%1&quot; has a communication fault</translation>
    </message>
    <message>
        <source>%1：%2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>%1，未知是否已执行</source>
        <translation>%1; it is unknown whether the request was carried out</translation>
    </message>
    <message>
        <source>分系统的名称、标识或通信方式为空</source>
        <translation>The sub-system has no name, tag or transport</translation>
    </message>
    <message>
        <source>分系统“%1”的名称或标识已存在</source>
        <translation>The name or tag of sub-system &quot;%1&quot; is already in use</translation>
    </message>
    <message>
        <source>查询请求为空</source>
        <translation>The query is empty</translation>
    </message>
    <message>
        <source>操作请求没有记录</source>
        <translation>The operation has no record</translation>
    </message>
    <message>
        <source>没有已连接的分系统</source>
        <translation>No sub-system is connected</translation>
    </message>
    <message>
        <source>；</source>
        <translation>; </translation>
    </message>
    <message>
        <source>分系统“%1”：%2</source>
        <translation>Sub-system &quot;%1&quot;: %2</translation>
    </message>
    <message>
        <source>%1 秒</source>
        <translation>%1 s</translation>
    </message>
    <message>
        <source>%1 毫秒</source>
        <translation>%1 ms</translation>
    </message>
    <message>
        <source>分系统“%1”已断开：请求已取消，未知是否已执行</source>
        <translation>Sub-system &quot;%1&quot; was disconnected: the request was cancelled; it is unknown whether it was carried out</translation>
    </message>
    <message>
        <source>分系统“%1”已断开：请求已取消</source>
        <translation>Sub-system &quot;%1&quot; was disconnected: the request was cancelled</translation>
    </message>
    <message>
        <source>分系统“%1”的请求已取消，未知是否已执行</source>
        <translation>The request to sub-system &quot;%1&quot; was cancelled; it is unknown whether it was carried out</translation>
    </message>
    <message>
        <source>分系统“%1”的请求已取消</source>
        <translation>The request to sub-system &quot;%1&quot; was cancelled</translation>
    </message>
    <message>
        <source>分系统“%1”未应答：超过 %2，未知是否已执行</source>
        <translation>Sub-system &quot;%1&quot; did not answer within %2; it is unknown whether the request was carried out</translation>
    </message>
    <message>
        <source>分系统“%1”未应答：超过 %2</source>
        <translation>Sub-system &quot;%1&quot; did not answer within %2</translation>
    </message>
    <message>
        <source>分类%1</source>
        <translation>Category %1</translation>
    </message>
    <message>
        <source>选择%1</source>
        <translation>Select %1</translation>
    </message>
    <message>
        <source>输入%1、名称、拼音或首字母搜索</source>
        <translation>Search by %1, name or pinyin</translation>
    </message>
    <message>
        <source>搜索%1</source>
        <translation>Search %1</translation>
    </message>
    <message>
        <source>%1列表</source>
        <translation>List of %1</translation>
    </message>
    <message>
        <source>全选</source>
        <translation>All</translation>
    </message>
    <message>
        <source>勾选列出的全部%1</source>
        <translation>Check every %1 listed</translation>
    </message>
    <message>
        <source>全不选</source>
        <translation>None</translation>
    </message>
    <message>
        <source>取消勾选列出的全部%1</source>
        <translation>Uncheck every %1 listed</translation>
    </message>
    <message>
        <source>反选</source>
        <translation>Invert</translation>
    </message>
    <message>
        <source>列出的%1中，勾选的取消，未勾选的勾选</source>
        <translation>Invert the check of every %1 listed</translation>
    </message>
    <message>
        <source>已选 %1 / %2</source>
        <translation>%1 of %2 selected</translation>
    </message>
    <message>
        <source>列出 %1，已选 %2 / %3</source>
        <translation>%1 listed, %2 of %3</translation>
    </message>
    <message>
        <source>机构列表</source>
        <translation>Institutions</translation>
    </message>
    <message>
        <source>输入机构名称、拼音或首字母</source>
        <translation>Institution, by name or pinyin</translation>
    </message>
    <message>
        <source>机构</source>
        <translation>Institution</translation>
    </message>
    <message>
        <source>机构加载失败：%1</source>
        <translation>Institutions could not be loaded: %1</translation>
    </message>
    <message>
        <source>请选择%1</source>
        <translation>Select %1</translation>
    </message>
    <message>
        <source>已选 %1 个%2</source>
        <translation>%2: %1 selected</translation>
    </message>
    <message>
        <source>服务端的主机或端口为空</source>
        <translation>The host or port of the server is missing</translation>
    </message>
    <message>
        <source>未加密的连接只能用于本机：%1</source>
        <translation>Unencrypted connections are only allowed to this machine: %1</translation>
    </message>
    <message>
        <source>本机缺少TLS库，无法建立加密连接</source>
        <translation>The TLS library is missing, so no encrypted connection can be made</translation>
    </message>
    <message>
        <source>应答过大，已放弃接收：最多 %1 个文档</source>
        <translation>The reply is too large and was dropped: more than %1 documents</translation>
    </message>
    <message>
        <source>应答不完整：应有 %1 条记录，收到 %2 条</source>
        <translation>The reply is incomplete: records expected: %1, received: %2</translation>
    </message>
    <message>
        <source>服务端在规定时间内没有响应</source>
        <translation>The server did not respond in time</translation>
    </message>
    <message>
        <source>连接中断：%1</source>
        <translation>Connection lost: %1</translation>
    </message>
    <message>
        <source>无法连接：%1</source>
        <translation>Cannot connect: %1</translation>
    </message>
    <message>
        <source>请求过大，无法发送</source>
        <translation>The request is too large to be sent</translation>
    </message>
    <message>
        <source>用户名或密码过长</source>
        <translation>The user name or password is too long</translation>
    </message>
    <message>
        <source>服务端没有应答登录</source>
        <translation>The server did not answer the log-in</translation>
    </message>
    <message>
        <source>服务端没有响应</source>
        <translation>The server does not respond</translation>
    </message>
    <message>
        <source>服务端的通信协议版本不受支持：%1</source>
        <translation>The protocol version of the server is not supported: %1</translation>
    </message>
    <message>
        <source>该地址上是分系统“%1”（%2），而不是 %3</source>
        <translation>At this address is sub-system &quot;%1&quot; (%2), not %3</translation>
    </message>
    <message>
        <source>应答次序错误</source>
        <translation>The reply is out of order</translation>
    </message>
    <message>
        <source>应答过大，已放弃接收：同时最多 %1 字节</source>
        <translation>The reply is too large and was dropped: more than %1 bytes at a time</translation>
    </message>
    <message>
        <source>、</source>
        <translation>, </translation>
    </message>
    <message>
        <source>服务端证书已过期（有效期至 %1）</source>
        <translation>The certificate of the server has expired (valid until %1)</translation>
    </message>
    <message>
        <source>服务端证书尚未生效（自 %1 起有效），请检查本机时间</source>
        <translation>The certificate of the server is not yet valid (valid from %1); check the clock of this machine</translation>
    </message>
    <message>
        <source>服务端证书不属于主机 %1（证书属于 %2）</source>
        <translation>The certificate of the server is not for host %1 (it is for %2)</translation>
    </message>
    <message>
        <source>服务端证书的颁发机构不受信任（%1）</source>
        <translation>The issuer of the server&apos;s certificate is not trusted (%1)</translation>
    </message>
    <message>
        <source>服务端证书已被吊销</source>
        <translation>The certificate of the server has been revoked</translation>
    </message>
    <message>
        <source>服务端证书无效：%1</source>
        <translation>The certificate of the server is invalid: %1</translation>
    </message>
    <message>
        <source>对方没有使用TLS加密</source>
        <translation>The other side does not use TLS</translation>
    </message>
    <message>
        <source>服务端不支持TLS 1.2及以上版本，为安全起见不予连接</source>
        <translation>The server does not support TLS 1.2 or newer; for your safety no connection is made</translation>
    </message>
    <message>
        <source>TLS握手失败：%1</source>
        <translation>The TLS handshake failed: %1</translation>
    </message>
    <message>
        <source>服务端拒绝连接或没有启动</source>
        <translation>The server refused the connection or is not running</translation>
    </message>
    <message>
        <source>服务端关闭了连接</source>
        <translation>The server closed the connection</translation>
    </message>
    <message>
        <source>找不到主机 %1</source>
        <translation>Host %1 was not found</translation>
    </message>
    <message>
        <source>连接超时</source>
        <translation>The connection timed out</translation>
    </message>
    <message>
        <source>网络中断或主机不可达</source>
        <translation>The network is down or the host is unreachable</translation>
    </message>
    <message>
        <source>证书文件无法读取或不含证书：%1</source>
        <translation>The certificate file cannot be read or holds no certificate: %1</translation>
    </message>
    <message>
        <source>未加密的连接只能用于本机</source>
        <translation>Unencrypted connections are only allowed to this machine</translation>
    </message>
    <message>
        <source>可导入</source>
        <translation>Ready</translation>
    </message>
    <message>
        <source>不导入</source>
        <translation>Rejected</translation>
    </message>
    <message>
        <source>行号</source>
        <translation>Line</translation>
    </message>
    <message>
        <source>证券代码</source>
        <translation>Security code</translation>
    </message>
    <message>
        <source>证券名称</source>
        <translation>Security name</translation>
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
        <source>导入名单</source>
        <translation>Import list</translation>
    </message>
    <message>
        <source>%1：共%2行，可导入%3行，不导入%4行</source>
        <translation>%1: rows in total: %2, ready: %3, rejected: %4</translation>
    </message>
    <message>
        <source>导入结果</source>
        <translation>Import result</translation>
    </message>
    <message>
        <source>取消</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>关闭</source>
        <translation>Close</translation>
    </message>
    <message>
        <source>证券列表</source>
        <translation>Securities</translation>
    </message>
    <message>
        <source>代码、名称或拼音首字母</source>
        <translation>Code, name or pinyin</translation>
    </message>
    <message>
        <source>证券列表加载失败：%1，仍可直接输入证券代码</source>
        <translation>Securities could not be loaded: %1; you can still enter a security code</translation>
    </message>
    <message>
        <source>没有找到与“%1”相符的证券，请输入证券代码</source>
        <translation>No security matches &quot;%1&quot;; enter a security code</translation>
    </message>
    <message>
        <source>与“%1”相符的证券不止一个，请从列表中选择</source>
        <translation>More than one security matches &quot;%1&quot;; choose from the list</translation>
    </message>
    <message>
        <source>名单</source>
        <translation>List</translation>
    </message>
    <message>
        <source>方向</source>
        <translation>Direction</translation>
    </message>
    <message>
        <source>CSV文件 (*.csv *.txt);;所有文件 (*)</source>
        <translation>CSV files (*.csv *.txt);;All files (*)</translation>
    </message>
    <message>
        <source>证券</source>
        <translation>Security</translation>
    </message>
    <message>
        <source>添加</source>
        <translation>Add</translation>
    </message>
    <message>
        <source>在名单中查找</source>
        <translation>Find in the list</translation>
    </message>
    <message>
        <source>黑白名单</source>
        <translation>Black and white list</translation>
    </message>
    <message>
        <source>修改</source>
        <translation>Change</translation>
    </message>
    <message>
        <source>修改所选证券（Enter）</source>
        <translation>Change the selected securities (Enter)</translation>
    </message>
    <message>
        <source>删除所选证券（Delete）</source>
        <translation>Delete the selected securities (Delete)</translation>
    </message>
    <message>
        <source>撤销</source>
        <translation>Undo</translation>
    </message>
    <message>
        <source>撤销（Ctrl+Z）</source>
        <translation>Undo (Ctrl+Z)</translation>
    </message>
    <message>
        <source>恢复</source>
        <translation>Redo</translation>
    </message>
    <message>
        <source>恢复（Ctrl+Y）</source>
        <translation>Redo (Ctrl+Y)</translation>
    </message>
    <message>
        <source>粘贴</source>
        <translation>Paste</translation>
    </message>
    <message>
        <source>粘贴从电子表格复制的证券（Ctrl+V）</source>
        <translation>Paste securities copied from a spreadsheet (Ctrl+V)</translation>
    </message>
    <message>
        <source>导入</source>
        <translation>Import</translation>
    </message>
    <message>
        <source>从CSV文件导入</source>
        <translation>Import from a CSV file</translation>
    </message>
    <message>
        <source>导出</source>
        <translation>Export</translation>
    </message>
    <message>
        <source>将显示的证券导出为CSV文件</source>
        <translation>Export the securities shown to a CSV file</translation>
    </message>
    <message>
        <source>共%1条，黑名单%2条，白名单%3条</source>
        <translation>Total: %1, black list: %2, white list: %3</translation>
    </message>
    <message>
        <source>改为%1</source>
        <translation>Change to %1</translation>
    </message>
    <message>
        <source>剪贴板</source>
        <translation>Clipboard</translation>
    </message>
    <message>
        <source>%1中没有证券</source>
        <translation>%1 contains no securities</translation>
    </message>
    <message>
        <source>导出名单</source>
        <translation>Export list</translation>
    </message>
    <message>
        <source>黑白名单.csv</source>
        <translation>lists.csv</translation>
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
        <source>请输入证券代码</source>
        <translation>Enter a security code</translation>
    </message>
    <message>
        <source>证券代码不能超过%1个字符</source>
        <translation>The security code must not exceed %1 characters</translation>
    </message>
    <message>
        <source>“%1”不是证券代码，代码只能由字母、数字和 . - _ &amp; 组成</source>
        <translation>&quot;%1&quot; is not a security code; codes consist of letters, digits and . - _ &amp;</translation>
    </message>
    <message>
        <source>证券列表中没有“%1”，只能使用列表中的证券代码</source>
        <translation>&quot;%1&quot; is not among the securities; only codes of listed securities may be used</translation>
    </message>
    <message>
        <source>证券%1已在%2中</source>
        <translation>Security %1 is already on the %2</translation>
    </message>
    <message>
        <source>证券%1已在%2中，同一证券不能同时在黑名单和白名单中</source>
        <translation>Security %1 is already on the %2; a security cannot be on both the black and the white list</translation>
    </message>
    <message>
        <source>“%1”不是名单，请填写黑名单或白名单</source>
        <translation>&quot;%1&quot; is not a list; enter black or white</translation>
    </message>
    <message>
        <source>“%1”不是方向，请填写双向、买入或卖出</source>
        <translation>&quot;%1&quot; is not a direction; enter both, buy or sell</translation>
    </message>
    <message>
        <source>该类账号的名单不区分方向</source>
        <translation>Lists of this account type have no direction</translation>
    </message>
    <message>
        <source>加入%1</source>
        <translation>Goes on the %1</translation>
    </message>
    <message>
        <source>与第%1行重复</source>
        <translation>Repeats line %1</translation>
    </message>
    <message>
        <source>第%1行已将该证券加入%2，同一证券不能同时在黑名单和白名单中</source>
        <translation>Line %1 already puts this security on the %2; a security cannot be on both the black and the white list</translation>
    </message>
    <message>
        <source>无法读取文件“%1”：%2</source>
        <translation>Cannot read file &quot;%1&quot;: %2</translation>
    </message>
    <message>
        <source>文件“%1”过大</source>
        <translation>File &quot;%1&quot; is too large</translation>
    </message>
    <message>
        <source>，无法判断。请另存为“CSV UTF-8”后再导入</source>
        <translation>, so its encoding is unclear. Save it as &quot;CSV UTF-8&quot; and import it again</translation>
    </message>
    <message>
        <source>“%1”：%2%3</source>
        <translation>&quot;%1&quot;: %2%3</translation>
    </message>
    <message>
        <source>风控规则</source>
        <translation>Risk rule</translation>
    </message>
    <message>
        <source>收件人</source>
        <translation>Recipients</translation>
    </message>
    <message>
        <source>邮件主题</source>
        <translation>Subject</translation>
    </message>
    <message>
        <source>邮件通知规则</source>
        <translation>E-mail rules</translation>
    </message>
    <message>
        <source>%1的收件人</source>
        <translation>Recipients of %1</translation>
    </message>
    <message>
        <source>多个收件人以分号分隔</source>
        <translation>Separate recipients by semicolons</translation>
    </message>
    <message>
        <source>%1的邮件主题</source>
        <translation>Subject of %1</translation>
    </message>
    <message>
        <source>启用%1的邮件通知</source>
        <translation>Send e-mails for %1</translation>
    </message>
    <message numerus="yes">
        <source>已删除%n条</source>
        <translation>
            <numerusform>%n limit deleted</numerusform>
            <numerusform>%n limits deleted</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>导入%n行</source>
        <translation>
            <numerusform>Import %n row</numerusform>
            <numerusform>Import %n rows</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>已加入%n条</source>
        <translation>
            <numerusform>%n entry added</numerusform>
            <numerusform>%n entries added</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>WQ</name>
    <message>
        <source>有未保存的修改, 再按一次Esc放弃</source>
        <translation>There are unsaved changes; press Esc again to discard them</translation>
    </message>
    <message>
        <source>关闭</source>
        <translation>Close</translation>
    </message>
    <message>
        <source>有未保存的修改</source>
        <translation>There are unsaved changes</translation>
    </message>
    <message>
        <source>确定</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>保存</source>
        <translation>Save</translation>
    </message>
    <message>
        <source>全部保存</source>
        <translation>Save all</translation>
    </message>
    <message>
        <source>打开</source>
        <translation>Open</translation>
    </message>
    <message>
        <source>是</source>
        <translation>Yes</translation>
    </message>
    <message>
        <source>全部是</source>
        <translation>Yes to all</translation>
    </message>
    <message>
        <source>否</source>
        <translation>No</translation>
    </message>
    <message>
        <source>全部否</source>
        <translation>No to all</translation>
    </message>
    <message>
        <source>中止</source>
        <translation>Abort</translation>
    </message>
    <message>
        <source>重试</source>
        <translation>Retry</translation>
    </message>
    <message>
        <source>忽略</source>
        <translation>Ignore</translation>
    </message>
    <message>
        <source>取消</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>放弃</source>
        <translation>Discard</translation>
    </message>
    <message>
        <source>帮助</source>
        <translation>Help</translation>
    </message>
    <message>
        <source>应用</source>
        <translation>Apply</translation>
    </message>
    <message>
        <source>重置</source>
        <translation>Reset</translation>
    </message>
    <message>
        <source>恢复默认</source>
        <translation>Restore defaults</translation>
    </message>
    <message>
        <source>页签</source>
        <translation>Tabs</translation>
    </message>
    <message>
        <source>、</source>
        <translation>, </translation>
    </message>
    <message>
        <source>当前按钮：%1</source>
        <translation>Current button: %1</translation>
    </message>
    <message>
        <source>（空白）</source>
        <translation>(blank)</translation>
    </message>
    <message>
        <source>全选</source>
        <translation>Select all</translation>
    </message>
    <message>
        <source>筛选：%1</source>
        <translation>Filter: %1</translation>
    </message>
    <message>
        <source>搜索文字或拼音</source>
        <translation>Search text or pinyin</translation>
    </message>
    <message>
        <source>搜索</source>
        <translation>Search</translation>
    </message>
    <message>
        <source>筛选值</source>
        <translation>Filter values</translation>
    </message>
    <message>
        <source>值太多，仅列出前%1项；输入文字后确定则按包含筛选</source>
        <translation>Too many values: only the first %1 are listed. Enter a text and press OK to keep the rows that contain it</translation>
    </message>
    <message>
        <source>清除筛选</source>
        <translation>Clear filter</translation>
    </message>
    <message>
        <source>暂无数据</source>
        <translation>No data</translation>
    </message>
    <message>
        <source>显示列</source>
        <translation>Columns</translation>
    </message>
    <message>
        <source>查找文字或拼音</source>
        <translation>Find text or pinyin</translation>
    </message>
    <message>
        <source>查找</source>
        <translation>Find</translation>
    </message>
    <message>
        <source>上一个</source>
        <translation>Previous</translation>
    </message>
    <message>
        <source>查找上一个（Shift+F3）</source>
        <translation>Find previous (Shift+F3)</translation>
    </message>
    <message>
        <source>下一个</source>
        <translation>Next</translation>
    </message>
    <message>
        <source>查找下一个（F3）</source>
        <translation>Find next (F3)</translation>
    </message>
    <message>
        <source>关闭查找（Esc）</source>
        <translation>Close the find bar (Esc)</translation>
    </message>
    <message>
        <source>未找到</source>
        <translation>Not found</translation>
    </message>
    <message>
        <source>复制</source>
        <translation>Copy</translation>
    </message>
    <message>
        <source>复制（含表头）</source>
        <translation>Copy with headers</translation>
    </message>
    <message>
        <source>导出CSV…</source>
        <translation>Export CSV…</translation>
    </message>
    <message>
        <source>查找…</source>
        <translation>Find…</translation>
    </message>
    <message>
        <source>查找下一个</source>
        <translation>Find next</translation>
    </message>
    <message>
        <source>查找上一个</source>
        <translation>Find previous</translation>
    </message>
    <message>
        <source>自动列宽</source>
        <translation>Fit columns</translation>
    </message>
    <message>
        <source>清除排序</source>
        <translation>Clear sorting</translation>
    </message>
    <message>
        <source>筛选“%1”…</source>
        <translation>Filter &quot;%1&quot;…</translation>
    </message>
    <message>
        <source>表格 %1</source>
        <translation>Table %1</translation>
    </message>
    <message>
        <source>导出CSV</source>
        <translation>Export CSV</translation>
    </message>
    <message>
        <source>导出.csv</source>
        <translation>export.csv</translation>
    </message>
    <message>
        <source>CSV文件 (*.csv)</source>
        <translation>CSV files (*.csv)</translation>
    </message>
    <message>
        <source>表头</source>
        <translation>Header</translation>
    </message>
    <message>
        <source>无法写入文件“%1”：%2</source>
        <translation>Cannot write file &quot;%1&quot;: %2</translation>
    </message>
    <message>
        <source>没有符合条件的记录（共%1条）</source>
        <translation>No rows match the filter (rows: %1)</translation>
    </message>
    <message>
        <source>第%1行</source>
        <translation>Row %1</translation>
    </message>
    <message>
        <source>按钮：%1</source>
        <translation>Buttons: %1</translation>
    </message>
    <message>
        <source>排序</source>
        <translation>Sort</translation>
    </message>
    <message>
        <source>筛选</source>
        <translation>Filter</translation>
    </message>
    <message>
        <source>升序</source>
        <translation>ascending</translation>
    </message>
    <message>
        <source>降序</source>
        <translation>descending</translation>
    </message>
    <message>
        <source>已筛选</source>
        <translation>filtered</translation>
    </message>
    <message>
        <source>%1（%2）</source>
        <translation>%1 (%2)</translation>
    </message>
    <message>
        <source>，</source>
        <translation>, </translation>
    </message>
</context>
<context>
    <name>luawrapper</name>
    <message>
        <source>应返回一个表</source>
        <translation>it should return a table</translation>
    </message>
    <message>
        <source>开关 %1 嵌套过深</source>
        <translation>switch %1 is nested too deeply</translation>
    </message>
    <message>
        <source>开关的键应为文本</source>
        <translation>the keys of switches should be texts</translation>
    </message>
    <message>
        <source>开关 %1 中的键应为文本</source>
        <translation>the keys in switch %1 should be texts</translation>
    </message>
    <message>
        <source>开关 %1 的值应为 true 或 false</source>
        <translation>the value of switch %1 should be true or false</translation>
    </message>
    <message>
        <source>开关过多</source>
        <translation>there are too many switches</translation>
    </message>
    <message>
        <source>开关 %1 的值应为 true、false 或表</source>
        <translation>the value of switch %1 should be true, false or a table</translation>
    </message>
    <message>
        <source>无法读取模块配置文件 %1</source>
        <translation>Cannot read the module configuration %1</translation>
    </message>
    <message>
        <source>模块配置文件 %1 过大</source>
        <translation>The module configuration %1 is too large</translation>
    </message>
    <message>
        <source>未知错误</source>
        <translation>unknown error</translation>
    </message>
    <message>
        <source>模块配置文件 %1 第 %2 行</source>
        <translation>Module configuration %1, line %2</translation>
    </message>
    <message>
        <source>模块配置文件 %1</source>
        <translation>Module configuration %1</translation>
    </message>
    <message>
        <source>%1 占用内存过多</source>
        <translation>%1 uses too much memory</translation>
    </message>
    <message>
        <source>%1 执行时间过长</source>
        <translation>%1 runs for too long</translation>
    </message>
    <message>
        <source>%1 有错误: %2</source>
        <translation>%1 is wrong: %2</translation>
    </message>
    <message>
        <source>模块配置文件 %1 有错误: %2</source>
        <translation>The module configuration %1 is wrong: %2</translation>
    </message>
</context>
<context>
    <name>nvservice</name>
    <message>
        <source>缺少记录类型</source>
        <translation>the record type is missing</translation>
    </message>
    <message>
        <source>记录类型未知</source>
        <translation>the record type is unknown</translation>
    </message>
    <message>
        <source>数据格式错误: %1(字段 %2)</source>
        <translation>Malformed data: %1 (field %2)</translation>
    </message>
    <message>
        <source>数据文档过大</source>
        <translation>The document is too large</translation>
    </message>
    <message>
        <source>文档长度不符</source>
        <translation>the document has another length</translation>
    </message>
    <message>
        <source>文档没有结束符</source>
        <translation>the document has no end</translation>
    </message>
    <message>
        <source>字段重复</source>
        <translation>the field is repeated</translation>
    </message>
    <message>
        <source>数据文档的元素过多</source>
        <translation>The document has too many elements</translation>
    </message>
    <message>
        <source>元素名没有结束</source>
        <translation>the name of an element has no end</translation>
    </message>
    <message>
        <source>字段名不是 UTF-8</source>
        <translation>the name of a field is not UTF-8</translation>
    </message>
    <message>
        <source>数组元素的序号不符</source>
        <translation>the elements of an array are out of order</translation>
    </message>
    <message>
        <source>布尔值无效</source>
        <translation>a Boolean value is invalid</translation>
    </message>
    <message>
        <source>元素类型未知</source>
        <translation>the type of an element is unknown</translation>
    </message>
    <message>
        <source>数据不完整</source>
        <translation>the data are incomplete</translation>
    </message>
    <message>
        <source>文本长度超出文档</source>
        <translation>a text is longer than the document</translation>
    </message>
    <message>
        <source>文本没有结束符</source>
        <translation>a text has no end</translation>
    </message>
    <message>
        <source>数据文档中的文本过长</source>
        <translation>A text in the document is too long</translation>
    </message>
    <message>
        <source>文本不是 UTF-8</source>
        <translation>a text is not UTF-8</translation>
    </message>
    <message>
        <source>正则表达式没有结束</source>
        <translation>a regular expression has no end</translation>
    </message>
    <message>
        <source>二进制长度超出文档</source>
        <translation>binary data are longer than the document</translation>
    </message>
    <message>
        <source>二进制长度不符</source>
        <translation>binary data have another length</translation>
    </message>
    <message>
        <source>内嵌文档长度超出文档</source>
        <translation>a nested document is longer than the document</translation>
    </message>
    <message>
        <source>内嵌文档没有结束符</source>
        <translation>a nested document has no end</translation>
    </message>
    <message>
        <source>数据文档嵌套过深</source>
        <translation>The document is nested too deeply</translation>
    </message>
    <message>
        <source>数据文档的内嵌文档过多</source>
        <translation>The document has too many nested documents</translation>
    </message>
    <message>
        <source>数据格式错误: %1</source>
        <translation>Malformed data: %1</translation>
    </message>
    <message>
        <source>类型不符</source>
        <translation>wrong type</translation>
    </message>
    <message>
        <source>数值超出范围</source>
        <translation>the number is out of range</translation>
    </message>
    <message>
        <source>数值无效</source>
        <translation>the number is invalid</translation>
    </message>
    <message>
        <source>记录类型不符</source>
        <translation>wrong record type</translation>
    </message>
    <message>
        <source>期货账号</source>
        <translation>Futures account</translation>
    </message>
    <message>
        <source>证券账号</source>
        <translation>Securities account</translation>
    </message>
    <message>
        <source>信用账号</source>
        <translation>Margin account</translation>
    </message>
    <message>
        <source>贵金属账号</source>
        <translation>Precious-metals account</translation>
    </message>
    <message>
        <source>期货期权账号</source>
        <translation>Futures-options account</translation>
    </message>
    <message>
        <source>股票期权账号</source>
        <translation>Stock-options account</translation>
    </message>
    <message>
        <source>沪港通账号</source>
        <translation>Shanghai-Hong Kong Connect account</translation>
    </message>
    <message>
        <source>全国股转账号</source>
        <translation>NEEQ account</translation>
    </message>
    <message>
        <source>深港通账号</source>
        <translation>Shenzhen-Hong Kong Connect account</translation>
    </message>
    <message>
        <source>全业务账号</source>
        <translation>All-business account</translation>
    </message>
    <message>
        <source>理财账号</source>
        <translation>Wealth-management account</translation>
    </message>
    <message>
        <source>外盘期货账号</source>
        <translation>Overseas futures account</translation>
    </message>
    <message>
        <source>IB外盘账号</source>
        <translation>IB overseas account</translation>
    </message>
    <message>
        <source>银行间账号</source>
        <translation>Interbank account</translation>
    </message>
    <message>
        <source>证券</source>
        <translation>Security</translation>
    </message>
    <message>
        <source>期货</source>
        <translation>Futures</translation>
    </message>
    <message>
        <source>股票期权</source>
        <translation>Stock options</translation>
    </message>
    <message>
        <source>沪港通</source>
        <translation>Shanghai-Hong Kong Connect</translation>
    </message>
    <message>
        <source>全国股转</source>
        <translation>NEEQ</translation>
    </message>
    <message>
        <source>期货期权</source>
        <translation>Futures options</translation>
    </message>
    <message>
        <source>深港通</source>
        <translation>Shenzhen-Hong Kong Connect</translation>
    </message>
    <message>
        <source>银行间</source>
        <translation>Interbank</translation>
    </message>
    <message>
        <source>编辑</source>
        <translation>Edit</translation>
    </message>
    <message>
        <source>添加</source>
        <translation>Add</translation>
    </message>
    <message>
        <source>删除</source>
        <translation>Delete</translation>
    </message>
    <message>
        <source>账号</source>
        <translation>Account</translation>
    </message>
    <message>
        <source>账号组</source>
        <translation>Account group</translation>
    </message>
    <message>
        <source>产品</source>
        <translation>Product</translation>
    </message>
    <message>
        <source>黑名单</source>
        <translation>Black list</translation>
    </message>
    <message>
        <source>白名单</source>
        <translation>White list</translation>
    </message>
    <message>
        <source>双向</source>
        <translation>Both</translation>
    </message>
    <message>
        <source>买入</source>
        <translation>Buy</translation>
    </message>
    <message>
        <source>买</source>
        <translation>Buy</translation>
    </message>
    <message>
        <source>卖出</source>
        <translation>Sell</translation>
    </message>
    <message>
        <source>卖</source>
        <translation>Sell</translation>
    </message>
    <message>
        <source>全部资产</source>
        <translation>All assets</translation>
    </message>
    <message>
        <source>股票</source>
        <translation>Stocks</translation>
    </message>
    <message>
        <source>债券</source>
        <translation>Bonds</translation>
    </message>
    <message>
        <source>基金</source>
        <translation>Funds</translation>
    </message>
    <message>
        <source>回购</source>
        <translation>Repos</translation>
    </message>
    <message>
        <source>期权</source>
        <translation>Options</translation>
    </message>
    <message>
        <source>现金</source>
        <translation>Cash</translation>
    </message>
    <message>
        <source>证券分类</source>
        <translation>Security category</translation>
    </message>
    <message>
        <source>无</source>
        <translation>None</translation>
    </message>
    <message>
        <source>市值</source>
        <translation>Market value</translation>
    </message>
    <message>
        <source>成本</source>
        <translation>Cost</translation>
    </message>
    <message>
        <source>数量</source>
        <translation>Quantity</translation>
    </message>
    <message>
        <source>保证金</source>
        <translation>Margin</translation>
    </message>
    <message>
        <source>净资产</source>
        <translation>Net assets</translation>
    </message>
    <message>
        <source>总资产</source>
        <translation>Total assets</translation>
    </message>
    <message>
        <source>总股本</source>
        <translation>Share capital</translation>
    </message>
    <message>
        <source>浮动盈亏</source>
        <translation>Floating profit</translation>
    </message>
    <message>
        <source>大于</source>
        <translation>&gt;</translation>
    </message>
    <message>
        <source>大于等于</source>
        <translation>≥</translation>
    </message>
    <message>
        <source>小于</source>
        <translation>&lt;</translation>
    </message>
    <message>
        <source>小于等于</source>
        <translation>≤</translation>
    </message>
    <message>
        <source>元</source>
        <translation>CNY</translation>
    </message>
    <message>
        <source>万元</source>
        <translation>CNY 10,000</translation>
    </message>
    <message>
        <source>股</source>
        <translation>Shares</translation>
    </message>
    <message>
        <source>警告</source>
        <translation>Warn</translation>
    </message>
    <message>
        <source>禁止</source>
        <translation>Forbid</translation>
    </message>
    <message>
        <source>%1(字段 %2)</source>
        <translation>%1 (field %2)</translation>
    </message>
    <message>
        <source>查询条件的格式无效</source>
        <translation>The conditions of the query are not in the expected form</translation>
    </message>
</context>
<context>
    <name>utils</name>
    <message>
        <source>引号后有多余的内容</source>
        <translation>text follows a closing quotation mark</translation>
    </message>
    <message>
        <source>引号没有结束</source>
        <translation>a quotation mark is not closed</translation>
    </message>
    <message>
        <source>第%1行：%2</source>
        <translation>Line %1: %2</translation>
    </message>
    <message>
        <source>操作失败</source>
        <translation>The operation failed</translation>
    </message>
    <message>
        <source>文件不是UTF-8或GB18030编码的文本</source>
        <translation>The file is not a text in UTF-8 or GB18030</translation>
    </message>
    <message>
        <source>文件既可以读作UTF-8，也可以读作GB18030编码的文本</source>
        <translation>The file can be read as UTF-8 as well as GB18030</translation>
    </message>
    <message>
        <source>文件不是GB18030编码的文本</source>
        <translation>The file is not a text in GB18030</translation>
    </message>
    <message>
        <source>文件不是UTF-8编码的文本</source>
        <translation>The file is not a text in UTF-8</translation>
    </message>
    <message>
        <source>语言：zh 或 en，缺省时由 LC_ALL、LC_MESSAGES 和 LANG 决定</source>
        <translation>Language: zh or en; by default that of LC_ALL, LC_MESSAGES or LANG.</translation>
    </message>
    <message>
        <source>--language：只能是 zh 或 en</source>
        <translation>--language: has to be zh or en</translation>
    </message>
</context>
<context>
    <name>wire</name>
    <message>
        <source>通信数据格式错误: 字段 %1</source>
        <translation>Malformed message: field %1</translation>
    </message>
    <message>
        <source>通信数据格式错误: 消息长度无效</source>
        <translation>Malformed message: invalid length</translation>
    </message>
    <message>
        <source>通信数据超出限制: 消息长度 %1 字节, 最多 %2 字节</source>
        <translation>The message is too large: %1 bytes, at most %2 are allowed</translation>
    </message>
    <message>
        <source>通信数据格式错误: 缺少消息类型</source>
        <translation>Malformed message: its type is missing</translation>
    </message>
    <message>
        <source>消息类型未知</source>
        <translation>Unknown type of message</translation>
    </message>
    <message>
        <source>通信数据格式错误: 记录不完整</source>
        <translation>Malformed message: a record is incomplete</translation>
    </message>
    <message>
        <source>通信数据格式错误: 记录长度无效</source>
        <translation>Malformed message: a record has an invalid length</translation>
    </message>
    <message>
        <source>应答文档过大, 无法传输</source>
        <translation>The document of the reply is too large to be sent</translation>
    </message>
    <message>
        <source>%1 至 %2</source>
        <translation>%1 to %2</translation>
    </message>
    <message>
        <source>通信协议版本不兼容: 服务端支持 %1, 客户端支持 %2</source>
        <translation>The protocol versions do not match: the server supports %1, the client %2</translation>
    </message>
    <message>
        <source>SDK 版本不兼容: 服务端为 %1, 客户端为 %2</source>
        <translation>The SDK versions do not match: the server has %1, the client %2</translation>
    </message>
    <message>
        <source>您尚未登录或登录已失效，请重新登录</source>
        <translation>You are not logged in, or your log-in has expired; log in again</translation>
    </message>
    <message>
        <source>单条记录过大或类型未知, 无法传输</source>
        <translation>A record is too large or of an unknown type and cannot be sent</translation>
    </message>
</context>
</TS>
