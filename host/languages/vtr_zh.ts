<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN" sourcelanguage="en">
<context>
    <name>AuthClientForm</name>
    <message>
        <source>Your scenes, rendered on the farm.</source>
        <translation>您的场景，交给农场渲染。</translation>
    </message>
    <message>
        <source>Minimize</source>
        <translation>最小化</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>Sign in</source>
        <translation>登录</translation>
    </message>
    <message>
        <source>Use your farm account.</source>
        <translation>使用您的渲染农场账号。</translation>
    </message>
    <message>
        <source>User name</source>
        <translation>用户名</translation>
    </message>
    <message>
        <source>Password</source>
        <translation>密码</translation>
    </message>
    <message>
        <source>QuillStar Client</source>
        <translation>QuillStar 客户端</translation>
    </message>
    <message>
        <source>Skin</source>
        <translation>皮肤</translation>
    </message>
    <message>
        <source>Language</source>
        <translation>语言</translation>
    </message>
    <message>
        <source>QuillStar logo</source>
        <translation>QuillStar 标志</translation>
    </message>
</context>
<context>
    <name>ClientHost</name>
    <message>
        <source>The settings name a server that is not a URL the client can use: %1. Please correct %2 in %3, or clear it to use the embedded farm.</source>
        <translation>设置中的服务器不是客户端可用的网址：%1。请更正 %3 中的 %2，或将其清空以使用内置渲染农场。</translation>
    </message>
</context>
<context>
    <name>ConfigurationDialog</name>
    <message>
        <source>Download folder</source>
        <translation>下载文件夹</translation>
    </message>
    <message>
        <source>Nothing can be saved in this folder: %1.</source>
        <translation>无法保存到此文件夹：%1。</translation>
    </message>
</context>
<context>
    <name>ConfigurationForm</name>
    <message>
        <source>Settings</source>
        <translation>设置</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>Downloads</source>
        <translation>下载</translation>
    </message>
    <message>
        <source>Download finished jobs automatically</source>
        <translation>自动下载已完成的作业</translation>
    </message>
    <message>
        <source>Frames arrive as soon as a job is done.</source>
        <translation>作业完成后立即下载渲染结果。</translation>
    </message>
    <message>
        <source>Show a notice when a download has finished</source>
        <translation>下载完成时显示通知</translation>
    </message>
    <message>
        <source>In the system tray, for ten seconds.</source>
        <translation>在系统托盘中显示十秒。</translation>
    </message>
    <message>
        <source>Play a sound when a download has finished</source>
        <translation>下载完成时播放提示音</translation>
    </message>
    <message>
        <source>Through the default audio device.</source>
        <translation>通过默认音频设备播放。</translation>
    </message>
    <message>
        <source>Submission</source>
        <translation>提交</translation>
    </message>
    <message>
        <source>Offer frame range and image size</source>
        <translation>允许设置帧范围和图像尺寸</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Ok</source>
        <translation>确定</translation>
    </message>
    <message>
        <source>Download folder</source>
        <translation>下载文件夹</translation>
    </message>
    <message>
        <source>Browse</source>
        <translation>浏览</translation>
    </message>
    <message>
        <source>Downloads that have not finished yet go there, too.</source>
        <translation>尚未完成的下载也会保存到那里。</translation>
    </message>
    <message>
        <source>Days in the list after finishing</source>
        <translation>完成后在列表中保留的天数</translation>
    </message>
    <message>
        <source>No limit</source>
        <translation>不限</translation>
    </message>
    <message>
        <source>Clear finished</source>
        <translation>清除已完成</translation>
    </message>
    <message>
        <source>Files stay on the disk.</source>
        <translation>文件仍保留在磁盘上。</translation>
    </message>
    <message>
        <source>Adds an entry to the menu of a local task with a Maya scene.</source>
        <translation>在使用 Maya 场景的本地任务的右键菜单中添加相应选项。</translation>
    </message>
</context>
<context>
    <name>ConnectionDialog</name>
    <message>
        <source>Server: the farm on this computer</source>
        <translation>服务器：内置渲染农场</translation>
    </message>
    <message>
        <source>Server: %1</source>
        <translation>服务器：%1</translation>
    </message>
    <message>
        <source>Nothing has failed in this session.</source>
        <translation>本次会话中没有任何失败。</translation>
    </message>
</context>
<context>
    <name>ConnectionForm</name>
    <message>
        <source>Connection</source>
        <translation>连接</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>Latest failures</source>
        <translation>最近的失败</translation>
    </message>
    <message>
        <source>Try again</source>
        <translation>重试</translation>
    </message>
</context>
<context>
    <name>ConnectionStrip</name>
    <message>
        <source>Opens the list of the latest failures.</source>
        <translation>打开最近的失败列表。</translation>
    </message>
</context>
<context>
    <name>ConnectionText</name>
    <message>
        <source>Signing in</source>
        <translation>登录</translation>
    </message>
    <message>
        <source>Signing out</source>
        <translation>退出登录</translation>
    </message>
    <message>
        <source>Loading the balance</source>
        <translation>加载余额</translation>
    </message>
    <message>
        <source>Loading the projects</source>
        <translation>加载项目</translation>
    </message>
    <message>
        <source>Loading the list of jobs</source>
        <translation>加载作业列表</translation>
    </message>
    <message>
        <source>Submitting a job</source>
        <translation>提交作业</translation>
    </message>
    <message>
        <source>Stopping jobs</source>
        <translation>停止作业</translation>
    </message>
    <message>
        <source>Recovering jobs</source>
        <translation>恢复作业</translation>
    </message>
    <message>
        <source>Restarting jobs</source>
        <translation>重新渲染作业</translation>
    </message>
    <message>
        <source>Deleting jobs</source>
        <translation>删除作业</translation>
    </message>
    <message>
        <source>Starting a full render</source>
        <translation>开始全帧渲染</translation>
    </message>
    <message>
        <source>Loading the list of frames</source>
        <translation>加载帧列表</translation>
    </message>
    <message>
        <source>Downloading a frame</source>
        <translation>下载帧</translation>
    </message>
    <message>
        <source>Loading a job</source>
        <translation>加载作业</translation>
    </message>
    <message>
        <source>Comparing files with the farm</source>
        <translation>与渲染农场比对文件</translation>
    </message>
    <message>
        <source>Unpacking files on the farm</source>
        <translation>在渲染农场上解包文件</translation>
    </message>
    <message>
        <source>Uploading files</source>
        <translation>上传文件</translation>
    </message>
    <message>
        <source>1 frame</source>
        <translation>1 帧</translation>
    </message>
    <message>
        <source>%1 frames</source>
        <translation>%1 帧</translation>
    </message>
    <message>
        <source>%1 times</source>
        <translation>%1 次</translation>
    </message>
    <message>
        <source>Asking the farm</source>
        <translation>向渲染农场请求</translation>
    </message>
    <message>
        <source>Connected</source>
        <translation>已连接</translation>
    </message>
    <message>
        <source>Trying again…</source>
        <translation>正在重试…</translation>
    </message>
    <message>
        <source>Not reachable since %1, list as of %2</source>
        <translation>%1 起无法连接，列表截至 %2</translation>
    </message>
    <message>
        <source>Not reachable since %1</source>
        <translation>%1 起无法连接</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1：%2</translation>
    </message>
    <message>
        <source>Following changes on the farm</source>
        <translation>跟踪渲染农场的变化</translation>
    </message>
    <message>
        <source>Loading the space on the farm</source>
        <translation>加载渲染农场空间</translation>
    </message>
    <message>
        <source>Removing unneeded files</source>
        <translation>移除不需要的文件</translation>
    </message>
    <message>
        <source>Changing the priority of a job</source>
        <translation>更改作业的优先级</translation>
    </message>
</context>
<context>
    <name>Consent</name>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
</context>
<context>
    <name>DownloadQueue</name>
    <message>
        <source>The list of downloads could not be read. It is kept as %1, and a new list has begun.</source>
        <translation>无法读取下载列表。原列表已保存为 %1，并已新建列表。</translation>
    </message>
</context>
<context>
    <name>DownloadWorker</name>
    <message>
        <source>A change to the downloads could not be recorded: %1. The client keeps trying.</source>
        <translation>无法记录对下载的更改：%1。客户端会不断重试。</translation>
    </message>
    <message>
        <source>The files of %1 cannot be downloaded: %2</source>
        <translation>%1 的文件无法下载：%2</translation>
    </message>
    <message>
        <source>%1 has no files to download yet.</source>
        <translation>%1 还没有可下载的文件。</translation>
    </message>
    <message>
        <source>No download has failed.</source>
        <translation>没有失败的下载。</translation>
    </message>
</context>
<context>
    <name>FarmFault</name>
    <message>
        <source>the connection was closed before the answer was complete</source>
        <translation>连接在应答完成之前被关闭</translation>
    </message>
    <message>
        <source>there was no answer in time</source>
        <translation>未及时收到应答</translation>
    </message>
    <message>
        <source>the server that answered is not a farm</source>
        <translation>应答的服务器不是渲染农场</translation>
    </message>
    <message>
        <source>the connection was refused</source>
        <translation>连接被拒绝</translation>
    </message>
    <message>
        <source>the network knows no computer of this name</source>
        <translation>网络中找不到此名称的计算机</translation>
    </message>
    <message>
        <source>no encrypted connection could be agreed on</source>
        <translation>无法协商加密连接</translation>
    </message>
    <message>
        <source>this computer has lost its network</source>
        <translation>本机的网络连接已中断</translation>
    </message>
    <message>
        <source>this computer is not on a network</source>
        <translation>本机未连接网络</translation>
    </message>
    <message>
        <source>the network failed, or the connection was closed early</source>
        <translation>网络出现故障，或连接被提前关闭</translation>
    </message>
    <message>
        <source>the proxy refused the connection</source>
        <translation>代理服务器拒绝了连接</translation>
    </message>
    <message>
        <source>the proxy closed the connection</source>
        <translation>代理服务器关闭了连接</translation>
    </message>
    <message>
        <source>the network knows no proxy of this name</source>
        <translation>网络中找不到此名称的代理服务器</translation>
    </message>
    <message>
        <source>the proxy did not answer in time</source>
        <translation>代理服务器响应超时</translation>
    </message>
    <message>
        <source>the proxy could not pass the request on</source>
        <translation>代理服务器无法转发请求</translation>
    </message>
    <message>
        <source>this computer does not know who has issued it</source>
        <translation>本机不认识其颁发者</translation>
    </message>
    <message>
        <source>the server has issued it itself</source>
        <translation>该证书由服务器自行签发</translation>
    </message>
    <message>
        <source>it has expired</source>
        <translation>该证书已过期</translation>
    </message>
    <message>
        <source>it is not valid yet, or this computer&apos;s clock is wrong</source>
        <translation>该证书尚未生效，或本机时钟不准确</translation>
    </message>
    <message>
        <source>it belongs to another server</source>
        <translation>该证书属于另一台服务器</translation>
    </message>
    <message>
        <source>it has been revoked</source>
        <translation>该证书已被吊销</translation>
    </message>
    <message>
        <source>it is known to be misused</source>
        <translation>该证书已知被滥用</translation>
    </message>
    <message>
        <source>the server shows none</source>
        <translation>服务器没有出示证书</translation>
    </message>
    <message>
        <source>The files would exceed the account&apos;s space on the farm.</source>
        <translation>这些文件会超出账号在渲染农场上的空间。</translation>
    </message>
    <message>
        <source>The farm cannot read the packed files. Please submit the scene again.</source>
        <translation>渲染农场无法读取打包的文件。请重新提交场景。</translation>
    </message>
    <message>
        <source>The packed files are too large for the farm.</source>
        <translation>打包的文件对渲染农场来说过大。</translation>
    </message>
    <message>
        <source>The user name or the password is wrong.</source>
        <translation>用户名或密码错误。</translation>
    </message>
    <message>
        <source>The session has ended. Please sign in again.</source>
        <translation>会话已结束。请重新登录。</translation>
    </message>
    <message>
        <source>There were too many requests. Please try again in a moment.</source>
        <translation>请求过于频繁。请稍后再试。</translation>
    </message>
    <message>
        <source>An error occurred on the farm. The details are in its log.</source>
        <translation>渲染农场出现错误，详情见其日志。</translation>
    </message>
    <message>
        <source>The farm&apos;s disk is full.</source>
        <translation>渲染农场的磁盘已满。</translation>
    </message>
    <message>
        <source>The farm has no such job.</source>
        <translation>渲染农场上没有这个作业。</translation>
    </message>
    <message>
        <source>The farm no longer has this upload.</source>
        <translation>渲染农场上已没有这次上传。</translation>
    </message>
    <message>
        <source>The server does not know this request. It may be older than the client.</source>
        <translation>服务器不认识此请求，其版本可能比客户端旧。</translation>
    </message>
    <message>
        <source>The farm does not render jobs of this type.</source>
        <translation>渲染农场不渲染此类型的作业。</translation>
    </message>
    <message>
        <source>The account does not have this project.</source>
        <translation>该账号没有这个项目。</translation>
    </message>
    <message>
        <source>The farm lacks one of the files.</source>
        <translation>渲染农场缺少其中一个文件。</translation>
    </message>
    <message>
        <source>The farm is still working on this upload.</source>
        <translation>渲染农场仍在处理这次上传。</translation>
    </message>
    <message>
        <source>The proxy asks for a name and a password, or refuses those it was given.</source>
        <translation>代理服务器要求用户名和密码，或拒绝了所提供的用户名和密码。</translation>
    </message>
    <message>
        <source>The server answered with status %1.</source>
        <translation>服务器返回状态码 %1。</translation>
    </message>
    <message>
        <source>The farm is not running at the moment.</source>
        <translation>渲染农场目前没有运行。</translation>
    </message>
    <message>
        <source>The server cannot be reached: %1</source>
        <translation>无法连接服务器：%1</translation>
    </message>
    <message>
        <source>The server&apos;s certificate is not accepted, so nothing was sent to it: %1</source>
        <translation>服务器的证书未被接受，因此没有向其发送任何内容：%1</translation>
    </message>
    <message>
        <source>The server did not answer in time.</source>
        <translation>服务器响应超时。</translation>
    </message>
    <message>
        <source>The server&apos;s answer is too large.</source>
        <translation>服务器的响应过大。</translation>
    </message>
    <message>
        <source>The server&apos;s answer cannot be read.</source>
        <translation>无法读取服务器的响应。</translation>
    </message>
</context>
<context>
    <name>FarmProcess</name>
    <message>
        <source>%1 cannot be started.</source>
        <translation>无法启动 %1。</translation>
    </message>
    <message>
        <source>It ended without saying why.</source>
        <translation>它未说明原因就结束了。</translation>
    </message>
    <message>
        <source>It did not start in time.</source>
        <translation>它未能及时启动。</translation>
    </message>
    <message>
        <source>It crashed or was killed.</source>
        <translation>它已崩溃或被终止。</translation>
    </message>
</context>
<context>
    <name>FarmProtocol</name>
    <message>
        <source>The server&apos;s answer is incomplete.</source>
        <translation>服务器的响应不完整。</translation>
    </message>
</context>
<context>
    <name>FilterBar</name>
    <message>
        <source>Found: %1</source>
        <translation>找到：%1</translation>
    </message>
</context>
<context>
    <name>FilterMenu</name>
    <message>
        <source>Add a group…</source>
        <translation>添加分组…</translation>
    </message>
    <message>
        <source>Delete the group %1</source>
        <translation>删除分组 %1</translation>
    </message>
</context>
<context>
    <name>FilterText</name>
    <message>
        <source>%1: %2</source>
        <translation>%1：%2</translation>
    </message>
    <message>
        <source>Group</source>
        <translation>分组</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>搜索</translation>
    </message>
    <message>
        <source>, </source>
        <translation>，</translation>
    </message>
</context>
<context>
    <name>FinishNotice</name>
    <message>
        <source>%1: %2 frames</source>
        <translation>%1：%2 帧</translation>
    </message>
    <message>
        <source>%1 and %2: %3 frames</source>
        <translation>%1 和 %2：%3 帧</translation>
    </message>
    <message>
        <source>%1 jobs: %2 frames</source>
        <translation>%1 个作业：%2 帧</translation>
    </message>
</context>
<context>
    <name>FormClosing</name>
    <message>
        <source>QuillStar is still running</source>
        <translation>QuillStar 仍在运行</translation>
    </message>
    <message>
        <source>Transfers continue. Double-click this icon to open the window again.</source>
        <translation>传输会继续进行。双击此图标可重新打开窗口。</translation>
    </message>
</context>
<context>
    <name>FrameCharts</name>
    <message>
        <source>No frame is finished yet.</source>
        <translation>尚无已完成的帧。</translation>
    </message>
    <message>
        <source>Frame %1: %2</source>
        <translation>第 %1 帧：%2</translation>
    </message>
    <message>
        <source>Frames %1 to %2: at most %3</source>
        <translation>第 %1 至 %2 帧：最长 %3</translation>
    </message>
    <message>
        <source>Chart of the frame times</source>
        <translation>各帧用时图表</translation>
    </message>
    <message>
        <source>%1 finished frames took %2 each on average, and at most %3.</source>
        <translation>已完成 %1 帧，平均每帧用时 %2，最长 %3。</translation>
    </message>
    <message>
        <source>Nothing was charged in this period.</source>
        <translation>这些天没有扣费。</translation>
    </message>
    <message>
        <source>Chart of the account&apos;s spending by day</source>
        <translation>账户每日消费图表</translation>
    </message>
    <message>
        <source>%1 in the last %2 days.</source>
        <translation>最近 %2 天共 %1。</translation>
    </message>
</context>
<context>
    <name>FrameModel</name>
    <message>
        <source>Frame</source>
        <translation>帧</translation>
    </message>
    <message>
        <source>State</source>
        <translation>状态</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>用时</translation>
    </message>
    <message>
        <source>Cost</source>
        <translation>费用</translation>
    </message>
    <message>
        <source>Attempts</source>
        <translation>尝试次数</translation>
    </message>
    <message>
        <source>Rendering</source>
        <translation>渲染中</translation>
    </message>
    <message>
        <source>Finished</source>
        <translation>已完成</translation>
    </message>
    <message>
        <source>Failed</source>
        <translation>失败</translation>
    </message>
    <message>
        <source>Waiting</source>
        <translation>等待中</translation>
    </message>
    <message>
        <source>%1 s</source>
        <translation>%1 秒</translation>
    </message>
    <message>
        <source>%1 min %2 s</source>
        <translation>%1 分 %2 秒</translation>
    </message>
    <message>
        <source>%1 h %2 min</source>
        <translation>%1 小时 %2 分</translation>
    </message>
    <message>
        <source>%1 ms</source>
        <translation>%1 毫秒</translation>
    </message>
</context>
<context>
    <name>FrameRequests</name>
    <message>
        <source>The server&apos;s answer cannot be read.</source>
        <translation>无法读取服务器的响应。</translation>
    </message>
</context>
<context>
    <name>FramesForm</name>
    <message>
        <source>Frames</source>
        <translation>帧</translation>
    </message>
    <message>
        <source>Close (Esc)</source>
        <translation>关闭 (Esc)</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>Show picture</source>
        <translation>查看图片</translation>
    </message>
    <message>
        <source>Show the picture (Enter)</source>
        <translation>查看图片 (Enter)</translation>
    </message>
    <message>
        <source>Log of the frame</source>
        <translation>该帧的日志</translation>
    </message>
    <message>
        <source>Frame times</source>
        <translation>各帧用时</translation>
    </message>
    <message>
        <source>Spending by day</source>
        <translation>每日消费</translation>
    </message>
    <message>
        <source>The charges of the account in the last 30 days</source>
        <translation>账户最近 30 天的扣费</translation>
    </message>
    <message>
        <source>Priority</source>
        <translation>优先级</translation>
    </message>
    <message>
        <source>Among your own jobs, those with a higher priority are rendered first (-100 to 100).</source>
        <translation>在您自己的作业中，优先级较高的先渲染（-100 到 100）。</translation>
    </message>
</context>
<context>
    <name>FramesWindow</name>
    <message>
        <source>Frames of %1</source>
        <translation>%1 的帧</translation>
    </message>
    <message>
        <source>%1 of %2 frames finished</source>
        <translation>已完成 %1/%2 帧</translation>
    </message>
    <message>
        <source>%1 being rendered</source>
        <translation>%1 帧渲染中</translation>
    </message>
    <message>
        <source>%1 failed</source>
        <translation>%1 帧失败</translation>
    </message>
    <message>
        <source>%1 a frame</source>
        <translation>平均每帧 %1</translation>
    </message>
    <message>
        <source>The job has failed: %1</source>
        <translation>作业失败：%1</translation>
    </message>
    <message>
        <source>Frame %1: %2</source>
        <translation>第 %1 帧：%2</translation>
    </message>
    <message>
        <source>There is no log of this frame: no attempt has ended yet, or the renderer wrote nothing.</source>
        <translation>该帧没有日志：尚无尝试结束，或渲染器没有输出任何内容。</translation>
    </message>
</context>
<context>
    <name>InputDialogForm</name>
    <message>
        <source>Group name</source>
        <translation>分组名称</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>Or one of your projects, whose jobs it then lists:</source>
        <translation>或选择您的一个项目，分组将列出该项目的作业：</translation>
    </message>
    <message>
        <source>Projects</source>
        <translation>项目</translation>
    </message>
</context>
<context>
    <name>JobPictures</name>
    <message>
        <source>The farm no longer has this picture.</source>
        <translation>渲染农场已没有这张图片。</translation>
    </message>
    <message>
        <source>The picture is too large to be shown before it is downloaded.</source>
        <translation>图片太大，下载后才能查看。</translation>
    </message>
</context>
<context>
    <name>ListHint</name>
    <message>
        <source>No jobs yet</source>
        <translation>还没有作业</translation>
    </message>
    <message>
        <source>Press Submit or drop a scene here.</source>
        <translation>点击“提交”，或将场景拖放到这里。</translation>
    </message>
    <message>
        <source>No jobs match</source>
        <translation>没有符合条件的作业</translation>
    </message>
    <message>
        <source>The search or group above the list hides all others.</source>
        <translation>列表上方的搜索或分组隐藏了其他作业。</translation>
    </message>
    <message>
        <source>Show all jobs</source>
        <translation>显示所有作业</translation>
    </message>
    <message>
        <source>No scene is on its way to the farm</source>
        <translation>没有正在提交的场景</translation>
    </message>
    <message>
        <source>No downloads yet</source>
        <translation>还没有下载</translation>
    </message>
    <message>
        <source>Right-click a job under My Render and choose Download, or let the settings download finished jobs.</source>
        <translation>右键点击作业并选择“下载”，或在设置中开启自动下载。</translation>
    </message>
    <message>
        <source>No groups yet</source>
        <translation>还没有分组</translation>
    </message>
    <message>
        <source>A group lists the jobs of one of your projects.</source>
        <translation>分组可列出您的一个项目的作业。</translation>
    </message>
    <message>
        <source>Add a group…</source>
        <translation>添加分组…</translation>
    </message>
</context>
<context>
    <name>LoginPrompt</name>
    <message>
        <source>Name</source>
        <translation>名称</translation>
    </message>
    <message>
        <source>Password</source>
        <translation>密码</translation>
    </message>
    <message>
        <source>Ok</source>
        <translation>确定</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
</context>
<context>
    <name>MessageBoxForm</name>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>Details</source>
        <translation>详细信息</translation>
    </message>
</context>
<context>
    <name>MessageBoxService</name>
    <message>
        <source>Ok</source>
        <translation>确定</translation>
    </message>
</context>
<context>
    <name>NoticeBoard</name>
    <message>
        <source>QuillStar Client</source>
        <translation>QuillStar 客户端</translation>
    </message>
    <message>
        <source>Ok</source>
        <translation>确定</translation>
    </message>
</context>
<context>
    <name>PictureFetch</name>
    <message>
        <source>The server did not answer in time.</source>
        <translation>服务器响应超时。</translation>
    </message>
    <message>
        <source>The temporary folder cannot be written.</source>
        <translation>无法写入临时文件夹。</translation>
    </message>
    <message>
        <source>The farm is not running at the moment.</source>
        <translation>渲染农场目前没有运行。</translation>
    </message>
    <message>
        <source>The picture has changed on the farm.</source>
        <translation>渲染农场上的图片已被更换。</translation>
    </message>
</context>
<context>
    <name>PreviewWindow</name>
    <message>
        <source>%1 of %2</source>
        <translation>%1 / %2</translation>
    </message>
    <message>
        <source>%1 × %2 pixels</source>
        <translation>%1 × %2 像素</translation>
    </message>
    <message>
        <source>The file does not exist or cannot be read.</source>
        <translation>文件不存在或无法读取。</translation>
    </message>
    <message>
        <source>The file is not a picture that can be shown here.</source>
        <translation>此文件不是可在此显示的图片。</translation>
    </message>
    <message>
        <source>The picture is too large to be shown here.</source>
        <translation>图片过大，无法在此显示。</translation>
    </message>
    <message>
        <source>The picture is damaged.</source>
        <translation>图片已损坏。</translation>
    </message>
    <message>
        <source>%1%</source>
        <translation>%1%</translation>
    </message>
</context>
<context>
    <name>PreviewerForm</name>
    <message>
        <source>Preview</source>
        <translation>预览</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>Previous picture</source>
        <translation>上一张</translation>
    </message>
    <message>
        <source>Next picture</source>
        <translation>下一张</translation>
    </message>
    <message>
        <source>Show in actual size</source>
        <translation>按实际大小显示</translation>
    </message>
    <message>
        <source>Close (Esc)</source>
        <translation>关闭 (Esc)</translation>
    </message>
    <message>
        <source>Previous picture (Left)</source>
        <translation>上一张图片（左方向键）</translation>
    </message>
    <message>
        <source>Play or pause (Space)</source>
        <translation>播放或暂停（空格键）</translation>
    </message>
    <message>
        <source>Play</source>
        <translation>播放</translation>
    </message>
    <message>
        <source>Next picture (Right)</source>
        <translation>下一张图片（右方向键）</translation>
    </message>
    <message>
        <source>Zoom out (-)</source>
        <translation>缩小 (-)</translation>
    </message>
    <message>
        <source>Zoom out</source>
        <translation>缩小</translation>
    </message>
    <message>
        <source>Zoom in (+)</source>
        <translation>放大 (+)</translation>
    </message>
    <message>
        <source>Zoom in</source>
        <translation>放大</translation>
    </message>
    <message>
        <source>Fit into the window (0)</source>
        <translation>适应窗口 (0)</translation>
    </message>
    <message>
        <source>Fit into the window</source>
        <translation>适应窗口</translation>
    </message>
    <message>
        <source>Show in actual size (1)</source>
        <translation>显示实际大小 (1)</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Waiting</source>
        <translation>等待中</translation>
    </message>
    <message>
        <source>Running</source>
        <translation>渲染中</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>已暂停</translation>
    </message>
    <message>
        <source>Pending</source>
        <translation>待处理</translation>
    </message>
    <message>
        <source>Finished</source>
        <translation>已完成</translation>
    </message>
    <message>
        <source>Deleted</source>
        <translation>已删除</translation>
    </message>
    <message>
        <source>To full render</source>
        <translation>待全帧渲染</translation>
    </message>
    <message>
        <source>Failed</source>
        <translation>失败</translation>
    </message>
    <message>
        <source>Arrears</source>
        <translation>欠费</translation>
    </message>
    <message>
        <source>Pause due to arrears</source>
        <translation>欠费暂停</translation>
    </message>
    <message>
        <source>Unknown</source>
        <translation>未知</translation>
    </message>
    <message>
        <source>Sequence</source>
        <translation>序号</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>名称</translation>
    </message>
    <message>
        <source>Start Time</source>
        <translation>开始时间</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>进度</translation>
    </message>
    <message>
        <source>Status</source>
        <translation>状态</translation>
    </message>
    <message>
        <source>Cost</source>
        <translation>费用</translation>
    </message>
    <message>
        <source>Module %1 is invalid</source>
        <translation>模块 %1 无效</translation>
    </message>
    <message>
        <source>[%1] Module %2 is invalid</source>
        <translation>[%1] 模块 %2 无效</translation>
    </message>
</context>
<context>
    <name>QsClientForm</name>
    <message>
        <source>QuillStar Client</source>
        <translation>QuillStar 客户端</translation>
    </message>
    <message>
        <source>Sign out</source>
        <translation>退出登录</translation>
    </message>
    <message>
        <source>Show all jobs</source>
        <translation>显示所有作业</translation>
    </message>
    <message>
        <source>Clear the search or group</source>
        <translation>清除搜索或分组</translation>
    </message>
    <message>
        <source>Pause all</source>
        <translation>全部暂停</translation>
    </message>
    <message>
        <source>Pause all local tasks, even across a restart</source>
        <translation>暂停所有本地任务，重新启动后仍然有效</translation>
    </message>
    <message>
        <source>Resume all</source>
        <translation>全部继续</translation>
    </message>
    <message>
        <source>Resume all paused tasks</source>
        <translation>继续所有已暂停的任务</translation>
    </message>
    <message>
        <source>Retry failed</source>
        <translation>重试失败项</translation>
    </message>
    <message>
        <source>Try all failed downloads again</source>
        <translation>重新尝试所有失败的下载</translation>
    </message>
    <message>
        <source>Open folder</source>
        <translation>打开文件夹</translation>
    </message>
    <message>
        <source>Open the folder for downloads</source>
        <translation>打开下载文件夹</translation>
    </message>
    <message>
        <source>Check or uncheck all rows of this page</source>
        <translation>勾选或取消勾选本页所有行</translation>
    </message>
    <message>
        <source>Groups</source>
        <translation>分组</translation>
    </message>
    <message>
        <source>Messages</source>
        <translation>消息</translation>
    </message>
    <message>
        <source>Skin</source>
        <translation>皮肤</translation>
    </message>
    <message>
        <source>Language</source>
        <translation>语言</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>设置</translation>
    </message>
    <message>
        <source>Minimize to the tray</source>
        <translation>最小化到托盘</translation>
    </message>
    <message>
        <source>Maximize</source>
        <translation>最大化</translation>
    </message>
    <message>
        <source>Restore</source>
        <translation>还原</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>退出</translation>
    </message>
    <message>
        <source>Farm jobs</source>
        <translation>农场作业</translation>
    </message>
    <message>
        <source>Local tasks</source>
        <translation>本地任务</translation>
    </message>
    <message>
        <source>Downloads</source>
        <translation>下载</translation>
    </message>
    <message>
        <source>Next page</source>
        <translation>下一页</translation>
    </message>
    <message>
        <source>Next five pages</source>
        <translation>后五页</translation>
    </message>
    <message>
        <source>Previous five pages</source>
        <translation>前五页</translation>
    </message>
    <message>
        <source>Previous page</source>
        <translation>上一页</translation>
    </message>
    <message>
        <source>Account</source>
        <translation>账户</translation>
    </message>
    <message>
        <source>Choose which jobs are listed</source>
        <translation>选择要列出的作业</translation>
    </message>
    <message>
        <source>QuillStar logo</source>
        <translation>QuillStar 标志</translation>
    </message>
    <message>
        <source>Space on the farm</source>
        <translation>渲染农场空间</translation>
    </message>
</context>
<context>
    <name>SceneIntake</name>
    <message>
        <source>QuillStar Client</source>
        <translation>QuillStar 客户端</translation>
    </message>
    <message>
        <source>These scenes cannot be submitted:</source>
        <translation>以下场景无法提交：</translation>
    </message>
    <message>
        <source>Ok</source>
        <translation>确定</translation>
    </message>
    <message>
        <source>Submit a scene</source>
        <translation>提交场景</translation>
    </message>
    <message>
        <source>These scenes are in the list of local tasks already. Continue or delete their tasks there:</source>
        <translation>这些场景已在本地任务列表中。请在那里继续或删除它们的任务：</translation>
    </message>
    <message>
        <source>Scenes (%1)</source>
        <translation>场景 (%1)</translation>
    </message>
</context>
<context>
    <name>SearchForm</name>
    <message>
        <source>Search jobs</source>
        <translation>搜索作业</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>Earliest start time</source>
        <translation>最早开始时间</translation>
    </message>
    <message>
        <source>Latest start time</source>
        <translation>最晚开始时间</translation>
    </message>
    <message>
        <source>Earliest end time</source>
        <translation>最早结束时间</translation>
    </message>
    <message>
        <source>Latest end time</source>
        <translation>最晚结束时间</translation>
    </message>
    <message>
        <source>Number in the list</source>
        <translation>列表中的序号</translation>
    </message>
</context>
<context>
    <name>SessionControl</name>
    <message>
        <source>The user name or the password is wrong.</source>
        <translation>用户名或密码错误。</translation>
    </message>
    <message>
        <source>Too many attempts. Please try again in a moment.</source>
        <translation>尝试次数过多，请稍后再试。</translation>
    </message>
    <message>
        <source>Your session has ended. Please sign in again.</source>
        <translation>登录已失效，请重新登录。</translation>
    </message>
    <message>
        <source>Sign out</source>
        <translation>退出登录</translation>
    </message>
    <message>
        <source>Sign in</source>
        <translation>登录</translation>
    </message>
    <message>
        <source>The connection to %1 is not encrypted, so others on the network can read your password. Send it anyway?</source>
        <translation>与 %1 的连接未加密，网络上的其他人可以读取您的密码。仍要发送吗？</translation>
    </message>
    <message>
        <source>Send</source>
        <translation>发送</translation>
    </message>
    <message>
        <source>Open QuillStar</source>
        <translation>打开 QuillStar</translation>
    </message>
    <message>
        <source>The proxy %1 asks for a name and a password.</source>
        <translation>代理 %1 要求输入用户名和密码。</translation>
    </message>
</context>
<context>
    <name>SetArgumentForm</name>
    <message>
        <source>Render arguments</source>
        <translation>渲染参数</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>First and last frame of each group</source>
        <translation>每组的起始帧和结束帧</translation>
    </message>
    <message>
        <source>Number of frame ranges</source>
        <translation>帧范围数</translation>
    </message>
    <message>
        <source>First frame of range 1</source>
        <translation>第 1 个范围的首帧</translation>
    </message>
    <message>
        <source>Last frame of range 1</source>
        <translation>第 1 个范围的末帧</translation>
    </message>
    <message>
        <source>First frame of range 2</source>
        <translation>第 2 个范围的首帧</translation>
    </message>
    <message>
        <source>Last frame of range 2</source>
        <translation>第 2 个范围的末帧</translation>
    </message>
    <message>
        <source>First frame of range 3</source>
        <translation>第 3 个范围的首帧</translation>
    </message>
    <message>
        <source>Last frame of range 3</source>
        <translation>第 3 个范围的末帧</translation>
    </message>
    <message>
        <source>First frame of range 4</source>
        <translation>第 4 个范围的首帧</translation>
    </message>
    <message>
        <source>Last frame of range 4</source>
        <translation>第 4 个范围的末帧</translation>
    </message>
    <message>
        <source>First frame of range 5</source>
        <translation>第 5 个范围的首帧</translation>
    </message>
    <message>
        <source>Last frame of range 5</source>
        <translation>第 5 个范围的末帧</translation>
    </message>
    <message>
        <source>First frame of range 6</source>
        <translation>第 6 个范围的首帧</translation>
    </message>
    <message>
        <source>Last frame of range 6</source>
        <translation>第 6 个范围的末帧</translation>
    </message>
    <message>
        <source>First frame of range 7</source>
        <translation>第 7 个范围的首帧</translation>
    </message>
    <message>
        <source>Last frame of range 7</source>
        <translation>第 7 个范围的末帧</translation>
    </message>
    <message>
        <source>First frame of range 8</source>
        <translation>第 8 个范围的首帧</translation>
    </message>
    <message>
        <source>Last frame of range 8</source>
        <translation>第 8 个范围的末帧</translation>
    </message>
    <message>
        <source>First frame of range 9</source>
        <translation>第 9 个范围的首帧</translation>
    </message>
    <message>
        <source>Last frame of range 9</source>
        <translation>第 9 个范围的末帧</translation>
    </message>
    <message>
        <source>First frame of range 10</source>
        <translation>第 10 个范围的首帧</translation>
    </message>
    <message>
        <source>Last frame of range 10</source>
        <translation>第 10 个范围的末帧</translation>
    </message>
    <message>
        <source>First frame of range 11</source>
        <translation>第 11 个范围的首帧</translation>
    </message>
    <message>
        <source>Last frame of range 11</source>
        <translation>第 11 个范围的末帧</translation>
    </message>
    <message>
        <source>First frame of range 12</source>
        <translation>第 12 个范围的首帧</translation>
    </message>
    <message>
        <source>Last frame of range 12</source>
        <translation>第 12 个范围的末帧</translation>
    </message>
    <message>
        <source>First frame of range 13</source>
        <translation>第 13 个范围的首帧</translation>
    </message>
    <message>
        <source>Last frame of range 13</source>
        <translation>第 13 个范围的末帧</translation>
    </message>
    <message>
        <source>First frame of range 14</source>
        <translation>第 14 个范围的首帧</translation>
    </message>
    <message>
        <source>Last frame of range 14</source>
        <translation>第 14 个范围的末帧</translation>
    </message>
    <message>
        <source>First frame of range 15</source>
        <translation>第 15 个范围的首帧</translation>
    </message>
    <message>
        <source>Last frame of range 15</source>
        <translation>第 15 个范围的末帧</translation>
    </message>
    <message>
        <source>Image width</source>
        <translation>图像宽度</translation>
    </message>
    <message>
        <source>Image height</source>
        <translation>图像高度</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
</context>
<context>
    <name>SetParentForm</name>
    <message>
        <source>Set parent jobs</source>
        <translation>设置父作业</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>The chosen jobs wait until every job checked here has finished.</source>
        <translation>所选作业将等待此处勾选的作业全部完成后再开始。</translation>
    </message>
    <message>
        <source>Jobs to wait for</source>
        <translation>要等待的作业</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
</context>
<context>
    <name>SideColumn</name>
    <message>
        <source>No project chosen</source>
        <translation>未选择项目</translation>
    </message>
</context>
<context>
    <name>SignInWindow</name>
    <message>
        <source>Signing in…</source>
        <translation>正在登录…</translation>
    </message>
    <message>
        <source>Sign in</source>
        <translation>登录</translation>
    </message>
    <message>
        <source>Server: the farm on this computer</source>
        <translation>服务器：内置渲染农场</translation>
    </message>
    <message>
        <source>Server: %1</source>
        <translation>服务器：%1</translation>
    </message>
    <message>
        <source>The farm on this computer does not start: %1</source>
        <translation>内置渲染农场未能启动：%1</translation>
    </message>
    <message>
        <source>Starting the farm…</source>
        <translation>正在启动渲染农场…</translation>
    </message>
    <message>
        <source>Try again</source>
        <translation>重试</translation>
    </message>
</context>
<context>
    <name>SpaceControl</name>
    <message>
        <source>Delete 1 job and free up to %1 of your space on the farm?</source>
        <translation>删除 1 个作业，最多释放您在渲染农场上的 %1 空间？</translation>
    </message>
    <message>
        <source>Delete %1 jobs and free up to %2 of your space on the farm?</source>
        <translation>删除 %1 个作业，最多释放您在渲染农场上的 %2 空间？</translation>
    </message>
    <message>
        <source>Their pictures there (%1) are deleted, too.</source>
        <translation>渲染农场上的图片（%1）也会一并删除。</translation>
    </message>
    <message>
        <source>Jobs that have not ended yet: %1.</source>
        <translation>尚未结束的作业：%1。</translation>
    </message>
    <message>
        <source>Space on the farm</source>
        <translation>渲染农场空间</translation>
    </message>
    <message>
        <source>The server&apos;s answer cannot be read.</source>
        <translation>无法读取服务器的响应。</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>删除</translation>
    </message>
    <message>
        <source>Remove %1 of files that no job needs? Scenes that use them have to send them again.</source>
        <translation>移除已没有作业需要的 %1 文件？使用它们的场景需要重新发送这些文件。</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>移除</translation>
    </message>
</context>
<context>
    <name>SpaceDialog</name>
    <message>
        <source>%1 of %2 used</source>
        <translation>已使用 %1，共 %2</translation>
    </message>
    <message>
        <source>Asking the farm…</source>
        <translation>正在向渲染农场查询…</translation>
    </message>
    <message>
        <source>Check the jobs that you no longer need.</source>
        <translation>请勾选不再需要的作业。</translation>
    </message>
    <message>
        <source>No job has files on the farm.</source>
        <translation>没有作业在渲染农场上存有文件。</translation>
    </message>
    <message>
        <source>Checked: %1 (files %2, pictures %3)</source>
        <translation>已勾选：%1（文件 %2，图片 %3）</translation>
    </message>
    <message>
        <source>Unfinished uploads take %1 of it.</source>
        <translation>其中未完成的上传占用 %1。</translation>
    </message>
    <message>
        <source>No job needs %1 of it.</source>
        <translation>其中 %1 已没有作业需要。</translation>
    </message>
    <message>
        <source>Finished pictures take another %1, which does not count.</source>
        <translation>完成的图片另占 %1，不计入空间。</translation>
    </message>
    <message>
        <source>Only the %1 largest jobs are listed.</source>
        <translation>仅列出占用空间最多的 %1 个作业。</translation>
    </message>
</context>
<context>
    <name>SpaceForm</name>
    <message>
        <source>Space on the farm</source>
        <translation>渲染农场空间</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>Used space</source>
        <translation>已用空间</translation>
    </message>
    <message>
        <source>Jobs, the largest files first</source>
        <translation>作业，文件最大的在前</translation>
    </message>
    <message>
        <source>Jobs with files on the farm</source>
        <translation>在渲染农场上存有文件的作业</translation>
    </message>
    <message>
        <source>Space checks a job, Delete deletes the checked ones.</source>
        <translation>空格键勾选作业，Delete 键删除已勾选的作业。</translation>
    </message>
    <message>
        <source>Remove unneeded files</source>
        <translation>移除不需要的文件</translation>
    </message>
    <message>
        <source>Removes the files that no job needs</source>
        <translation>移除没有作业需要的文件</translation>
    </message>
    <message>
        <source>Delete jobs</source>
        <translation>删除作业</translation>
    </message>
    <message>
        <source>Deletes the checked jobs, after a question</source>
        <translation>询问后删除已勾选的作业</translation>
    </message>
    <message>
        <source>Show more</source>
        <translation>显示更多</translation>
    </message>
    <message>
        <source>Lists further, smaller jobs</source>
        <translation>列出其他占用空间较少的作业</translation>
    </message>
</context>
<context>
    <name>SpaceModel</name>
    <message>
        <source>Sequence</source>
        <translation>序号</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>名称</translation>
    </message>
    <message>
        <source>Status</source>
        <translation>状态</translation>
    </message>
    <message>
        <source>Files</source>
        <translation>文件</translation>
    </message>
    <message>
        <source>Pictures</source>
        <translation>图片</translation>
    </message>
</context>
<context>
    <name>SpaceOffer</name>
    <message>
        <source>Space on the farm</source>
        <translation>渲染农场空间</translation>
    </message>
    <message>
        <source>The files of these scenes would exceed your space on the farm. Show what takes the space?</source>
        <translation>这些场景的文件会超出您在渲染农场上的空间。是否查看空间的占用情况？</translation>
    </message>
    <message>
        <source>Show</source>
        <translation>查看</translation>
    </message>
</context>
<context>
    <name>SubmitQueue</name>
    <message>
        <source>The list of submissions could not be read. It is kept as %1, and a new list has begun.</source>
        <translation>无法读取提交列表。它已保存为 %1，并已开始新的列表。</translation>
    </message>
</context>
<context>
    <name>SubmitRules</name>
    <message>
        <source>Texture missing</source>
        <translation>缺少贴图</translation>
    </message>
    <message>
        <source>Check arguments</source>
        <translation>请检查参数</translation>
    </message>
    <message>
        <source>Paused</source>
        <translation>已暂停</translation>
    </message>
    <message>
        <source>Submission failed</source>
        <translation>提交失败</translation>
    </message>
    <message>
        <source>No space left</source>
        <translation>空间不足</translation>
    </message>
</context>
<context>
    <name>TaskMessage</name>
    <message>
        <source>The farm cannot be reached. Trying again.</source>
        <translation>无法连接渲染农场，正在重试。</translation>
    </message>
    <message>
        <source>The farm is busy. Trying again.</source>
        <translation>渲染农场繁忙，正在重试。</translation>
    </message>
    <message>
        <source>The farm&apos;s disk is full. Trying again.</source>
        <translation>渲染农场的磁盘已满。正在重试。</translation>
    </message>
    <message>
        <source>Your session has ended. Please sign in again.</source>
        <translation>您的会话已结束，请重新登录。</translation>
    </message>
    <message>
        <source>The farm has failed several times. Please continue the submission later.</source>
        <translation>渲染农场多次失败。请稍后继续提交。</translation>
    </message>
    <message>
        <source>The scene needs too many files, or their paths are too long.</source>
        <translation>场景需要的文件过多，或其路径过长。</translation>
    </message>
    <message>
        <source>The scene needs more than %1 files.</source>
        <translation>该场景需要的文件超过 %1 个。</translation>
    </message>
    <message>
        <source>Stopped.</source>
        <translation>已停止。</translation>
    </message>
    <message>
        <source>Not submitted, because files are missing.</source>
        <translation>因缺少文件，未提交。</translation>
    </message>
    <message>
        <source>Please check the arguments, then continue.</source>
        <translation>请检查参数，然后继续。</translation>
    </message>
    <message>
        <source>The scene file cannot be read.</source>
        <translation>无法读取场景文件。</translation>
    </message>
    <message>
        <source>A file of the scene cannot be read: %1</source>
        <translation>无法读取场景的文件：%1</translation>
    </message>
    <message>
        <source>The submission could not be recorded. The disk may be full.</source>
        <translation>无法记录此次提交。磁盘可能已满。</translation>
    </message>
    <message>
        <source>The name of the scene file contains characters that the farm does not accept.</source>
        <translation>场景文件名包含渲染农场不接受的字符。</translation>
    </message>
    <message>
        <source>The folder for packed files cannot be created. The disk may be full.</source>
        <translation>无法创建用于打包文件的文件夹。磁盘可能已满。</translation>
    </message>
    <message>
        <source>A file cannot be read: %1</source>
        <translation>无法读取文件：%1</translation>
    </message>
    <message>
        <source>A file cannot be packed: %1</source>
        <translation>无法打包文件：%1</translation>
    </message>
    <message>
        <source>A package cannot be written: %1</source>
        <translation>无法写入打包文件：%1</translation>
    </message>
    <message>
        <source>The packed file cannot be read from the disk.</source>
        <translation>无法从磁盘读取打包文件。</translation>
    </message>
    <message>
        <source>The farm did not store the uploaded data. Please try again later.</source>
        <translation>渲染农场未保存上传的数据。请稍后重试。</translation>
    </message>
    <message>
        <source>The file arrived damaged at the farm.</source>
        <translation>文件到达渲染农场时已损坏。</translation>
    </message>
    <message>
        <source>The farm&apos;s answer about an upload cannot be read.</source>
        <translation>无法读取渲染农场关于上传的响应。</translation>
    </message>
    <message>
        <source>The farm&apos;s answer is incomplete. Please continue the submission later.</source>
        <translation>渲染农场的应答不完整。请稍后继续提交。</translation>
    </message>
    <message>
        <source>%1 files belong to the scene:</source>
        <translation>该场景包含 %1 个文件：</translation>
    </message>
    <message>
        <source>Submitted as job %1.</source>
        <translation>已提交为作业 %1。</translation>
    </message>
    <message>
        <source>Blender is reading the scene.</source>
        <translation>Blender 正在读取场景。</translation>
    </message>
    <message>
        <source>Blender is not installed on this computer, so nobody can tell which files the scene needs. Please install it, then submit the scene again.</source>
        <translation>本机未安装 Blender，因此无法得知该场景需要哪些文件。请先安装 Blender，然后重新提交场景。</translation>
    </message>
    <message>
        <source>Blender could not read the scene, or took more than ten minutes.</source>
        <translation>Blender 无法读取该场景，或读取时间超过十分钟。</translation>
    </message>
    <message>
        <source>The scene is made for the engine %1; the farm will render it with Cycles if you go on.</source>
        <translation>该场景使用 %1 引擎；如果继续，渲染农场将用 Cycles 渲染。</translation>
    </message>
    <message>
        <source>The scene&apos;s first frame is %1; the farm will render it as frame 1, and so on, if you go on.</source>
        <translation>该场景的第一帧编号为 %1；如果继续，渲染农场会将其作为第 1 帧渲染，其余各帧依此类推。</translation>
    </message>
    <message>
        <source>The scene has the frames %1 to %2; the farm will render only %3 to %4 if you go on.</source>
        <translation>该场景包含第 %1 至 %2 帧；如果继续，渲染农场只渲染第 %3 至 %4 帧。</translation>
    </message>
    <message>
        <source>%1 (use a path relative to the scene)</source>
        <translation>%1（请使用相对于场景的路径）</translation>
    </message>
    <message>
        <source>%1 (outside the scene&apos;s folder; will be sent if you go on)</source>
        <translation>%1（位于场景文件夹之外；继续则会一并发送）</translation>
    </message>
    <message>
        <source>The farm is not available at the moment.</source>
        <translation>当前没有可用的渲染农场。</translation>
    </message>
    <message>
        <source>The farm has stopped sending %1.</source>
        <translation>渲染农场已停止发送 %1。</translation>
    </message>
    <message>
        <source>The transfer of %1 was interrupted.</source>
        <translation>%1 的传输已中断。</translation>
    </message>
    <message>
        <source>The transfer of %1 was interrupted: %2</source>
        <translation>%1 的传输被中断：%2</translation>
    </message>
    <message>
        <source>The farm cannot send %1 at the moment: %2</source>
        <translation>渲染农场暂时无法发送 %1：%2</translation>
    </message>
    <message>
        <source>The farm refuses to send %1: %2</source>
        <translation>渲染农场拒绝发送 %1：%2</translation>
    </message>
    <message>
        <source>%1 The next attempt is in %2 s.</source>
        <translation>%1将在 %2 秒后重试。</translation>
    </message>
    <message>
        <source>%1 has changed on the farm.</source>
        <translation>渲染农场上的 %1 已更改。</translation>
    </message>
    <message>
        <source>The size of %1 has changed on the farm.</source>
        <translation>渲染农场上 %1 的大小已更改。</translation>
    </message>
    <message>
        <source>The farm sent a different part of %1 than requested.</source>
        <translation>渲染农场发送的不是所请求的 %1 部分。</translation>
    </message>
    <message>
        <source>The farm sent more data for %1 than announced.</source>
        <translation>渲染农场发送的 %1 数据多于其声明的大小。</translation>
    </message>
    <message>
        <source>%1 arrived damaged: its checksum is wrong.</source>
        <translation>%1 已损坏：校验和不正确。</translation>
    </message>
    <message>
        <source>The farm no longer has %1.</source>
        <translation>渲染农场上已没有 %1。</translation>
    </message>
    <message>
        <source>The farm lists %1, but does not send it.</source>
        <translation>渲染农场列出了 %1，但未能提供该文件。</translation>
    </message>
    <message>
        <source>The folder %1 is a link that leads out of the download folder, so nothing is saved there.</source>
        <translation>文件夹 %1 是指向下载文件夹之外的链接，因此不会在其中保存任何内容。</translation>
    </message>
    <message>
        <source>%1 cannot be saved: %2.</source>
        <translation>无法保存 %1：%2。</translation>
    </message>
    <message>
        <source>Another file named %1 is in the way.</source>
        <translation>已有另一个名为 %1 的文件。</translation>
    </message>
    <message>
        <source>%1 was saved, but its state could not be recorded. The disk may be full.</source>
        <translation>%1 已保存，但无法记录其状态。磁盘可能已满。</translation>
    </message>
</context>
<context>
    <name>TransferButtons</name>
    <message>
        <source>Please check the downloads first.</source>
        <translation>请先勾选下载项。</translation>
    </message>
    <message>
        <source>The folder %1 could not be opened.</source>
        <translation>无法打开文件夹 %1。</translation>
    </message>
</context>
<context>
    <name>TransferMeter</name>
    <message>
        <source>%1 of %2 %3</source>
        <translation>%1 / %2 %3</translation>
    </message>
</context>
<context>
    <name>TransferPool</name>
    <message>
        <source>Nothing can be saved in %1: %2. All downloads wait until it is possible again.</source>
        <translation>无法保存到 %1：%2。所有下载将等待，直到可以重新保存。</translation>
    </message>
    <message>
        <source>Nothing can be saved in %1: %2. Its downloads wait until it is possible again.</source>
        <translation>无法保存到 %1：%2。该文件夹的下载将等待，直到可以重新保存。</translation>
    </message>
</context>
<context>
    <name>TrayMenu</name>
    <message>
        <source>Default</source>
        <translation>默认</translation>
    </message>
    <message>
        <source>Dark</source>
        <translation>深色</translation>
    </message>
    <message>
        <source>Skin</source>
        <translation>皮肤</translation>
    </message>
    <message>
        <source>Language</source>
        <translation>语言</translation>
    </message>
</context>
<context>
    <name>VTGroup</name>
    <message>
        <source>Running</source>
        <translation>渲染中</translation>
    </message>
    <message>
        <source>Finished</source>
        <translation>已完成</translation>
    </message>
    <message>
        <source>All</source>
        <translation>全部</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>添加</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>删除</translation>
    </message>
    <message>
        <source>Project</source>
        <translation>项目</translation>
    </message>
    <message>
        <source>My Render</source>
        <translation>我的渲染</translation>
    </message>
    <message>
        <source>Group</source>
        <translation>分组</translation>
    </message>
    <message>
        <source>Group name:</source>
        <translation>分组名称：</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Ok</source>
        <translation>确定</translation>
    </message>
    <message>
        <source>Please input group name</source>
        <translation>请输入分组名称</translation>
    </message>
    <message>
        <source>The groups could not be saved. Changes may be lost when you quit or another user signs in.</source>
        <translation>无法保存分组。退出或其他用户登录后，更改可能会丢失。</translation>
    </message>
</context>
<context>
    <name>VTQsClientPrivate</name>
    <message>
        <source>wait</source>
        <translation>等待中</translation>
    </message>
    <message>
        <source>analyze</source>
        <translation>分析中</translation>
    </message>
    <message>
        <source>compress</source>
        <translation>打包中</translation>
    </message>
    <message>
        <source>checksum</source>
        <translation>校验中</translation>
    </message>
    <message>
        <source>copysame</source>
        <translation>比对中</translation>
    </message>
    <message>
        <source>upload</source>
        <translation>上传中</translation>
    </message>
    <message>
        <source>uncompress</source>
        <translation>解包中</translation>
    </message>
    <message>
        <source>submit</source>
        <translation>已提交</translation>
    </message>
    <message>
        <source>Waiting</source>
        <translation>等待中</translation>
    </message>
    <message>
        <source>Downloading</source>
        <translation>下载中</translation>
    </message>
    <message>
        <source>Finished</source>
        <translation>已完成</translation>
    </message>
    <message>
        <source>Failed</source>
        <translation>失败</translation>
    </message>
    <message>
        <source>Stopped</source>
        <translation>已停止</translation>
    </message>
    <message>
        <source>QuillStar Client</source>
        <translation>QuillStar 客户端</translation>
    </message>
    <message>
        <source>Ok</source>
        <translation>确定</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Balance</source>
        <translation>余额</translation>
    </message>
    <message>
        <source>RMB</source>
        <translation>元</translation>
    </message>
    <message>
        <source>credits</source>
        <translation>积分</translation>
    </message>
    <message>
        <source>Service hotline</source>
        <translation>服务热线</translation>
    </message>
    <message>
        <source>Version</source>
        <translation>版本</translation>
    </message>
    <message>
        <source>Charge</source>
        <translation>计费</translation>
    </message>
    <message>
        <source>Cost</source>
        <translation>费用</translation>
    </message>
    <message>
        <source>Select all</source>
        <translation>全选</translation>
    </message>
    <message>
        <source>Recover</source>
        <translation>恢复</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>停止</translation>
    </message>
    <message>
        <source>Restart</source>
        <translation>重新渲染</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>删除</translation>
    </message>
    <message>
        <source>Full render</source>
        <translation>全帧渲染</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>搜索</translation>
    </message>
    <message>
        <source>Submit</source>
        <translation>提交</translation>
    </message>
    <message>
        <source>Recharge</source>
        <translation>充值</translation>
    </message>
    <message>
        <source>Stop the checked jobs</source>
        <translation>停止勾选的行</translation>
    </message>
    <message>
        <source>Restart the checked jobs</source>
        <translation>重新渲染勾选的作业</translation>
    </message>
    <message>
        <source>Delete the checked rows</source>
        <translation>删除勾选的行</translation>
    </message>
    <message>
        <source>Render all frames of the checked jobs</source>
        <translation>渲染勾选作业的全部帧</translation>
    </message>
    <message>
        <source>Search jobs</source>
        <translation>搜索作业</translation>
    </message>
    <message>
        <source>Submit a scene</source>
        <translation>提交场景</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>退出</translation>
    </message>
    <message>
        <source>Minimize to the tray</source>
        <translation>最小化到托盘</translation>
    </message>
    <message>
        <source>Restore</source>
        <translation>还原</translation>
    </message>
    <message>
        <source>Maximize</source>
        <translation>最大化</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>设置</translation>
    </message>
    <message>
        <source>Skin</source>
        <translation>皮肤</translation>
    </message>
    <message>
        <source>Messages</source>
        <translation>消息</translation>
    </message>
    <message>
        <source>Language</source>
        <translation>语言</translation>
    </message>
    <message>
        <source>Previous page</source>
        <translation>上一页</translation>
    </message>
    <message>
        <source>Next page</source>
        <translation>下一页</translation>
    </message>
    <message>
        <source>Previous five pages</source>
        <translation>前五页</translation>
    </message>
    <message>
        <source>Next five pages</source>
        <translation>后五页</translation>
    </message>
    <message>
        <source>My Render</source>
        <translation>我的渲染</translation>
    </message>
    <message>
        <source>Local Task</source>
        <translation>本地任务</translation>
    </message>
    <message>
        <source>Download</source>
        <translation>下载</translation>
    </message>
    <message>
        <source>Are you sure to quit?</source>
        <translation>确定要退出吗？</translation>
    </message>
    <message>
        <source>Set parent</source>
        <translation>设置父作业</translation>
    </message>
    <message>
        <source>Continue submit</source>
        <translation>继续提交</translation>
    </message>
    <message>
        <source>Delete Tasks</source>
        <translation>删除任务</translation>
    </message>
    <message>
        <source>Set argument</source>
        <translation>设置参数</translation>
    </message>
    <message>
        <source>Open file path</source>
        <translation>打开文件位置</translation>
    </message>
    <message>
        <source>Redownload</source>
        <translation>重新下载</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>名称</translation>
    </message>
    <message>
        <source>Source</source>
        <translation>来源</translation>
    </message>
    <message>
        <source>Dest</source>
        <translation>保存位置</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>进度</translation>
    </message>
    <message>
        <source>Status</source>
        <translation>状态</translation>
    </message>
    <message>
        <source>Start Time</source>
        <translation>开始时间</translation>
    </message>
    <message>
        <source>Unkown</source>
        <translation>未知</translation>
    </message>
    <message>
        <source>Are you sure to delete these jobs?</source>
        <translation>确定要删除这些作业吗？</translation>
    </message>
    <message>
        <source>Delete jobs failed!</source>
        <translation>删除作业失败！</translation>
    </message>
    <message>
        <source>Stop jobs failed!</source>
        <translation>停止作业失败！</translation>
    </message>
    <message>
        <source>Recover jobs failed!</source>
        <translation>恢复作业失败！</translation>
    </message>
    <message>
        <source>Restart jobs failed!</source>
        <translation>重新渲染作业失败！</translation>
    </message>
    <message>
        <source>Full render jobs failed!</source>
        <translation>全帧渲染作业失败！</translation>
    </message>
    <message>
        <source>Amount Overdue!</source>
        <translation>账户已欠费！</translation>
    </message>
    <message>
        <source>The checked items are already added to download list</source>
        <translation>勾选的作业已添加到下载列表</translation>
    </message>
    <message>
        <source>SceneFile</source>
        <translation>场景文件</translation>
    </message>
    <message>
        <source>Warn</source>
        <translation>警告</translation>
    </message>
    <message>
        <source>Unknown</source>
        <translation>未知</translation>
    </message>
    <message>
        <source>fail</source>
        <translation>失败</translation>
    </message>
    <message>
        <source>Lacked of texture files:</source>
        <translation>缺少贴图文件：</translation>
    </message>
    <message>
        <source>Quillstar Client</source>
        <translation>QuillStar 客户端</translation>
    </message>
    <message>
        <source>Retry uploading?Failed to upload files:</source>
        <translation>是否重新上传？以下文件上传失败：</translation>
    </message>
    <message>
        <source>Continue next step?
Below files are missing:
%1</source>
        <translation>是否继续下一步？
缺少以下文件：
%1</translation>
    </message>
    <message>
        <source>embedded</source>
        <translation>内置渲染农场</translation>
    </message>
</context>
<context>
    <name>VTSearch</name>
    <message>
        <source>Waiting</source>
        <translation>等待中</translation>
    </message>
    <message>
        <source>Running</source>
        <translation>渲染中</translation>
    </message>
    <message>
        <source>Stopped</source>
        <translation>已停止</translation>
    </message>
    <message>
        <source>Finished</source>
        <translation>已完成</translation>
    </message>
    <message>
        <source>Deleted</source>
        <translation>已删除</translation>
    </message>
    <message>
        <source>To full render</source>
        <translation>待全帧渲染</translation>
    </message>
    <message>
        <source>Failed</source>
        <translation>失败</translation>
    </message>
    <message>
        <source>Arrears</source>
        <translation>欠费</translation>
    </message>
    <message>
        <source>Pause due to arrears</source>
        <translation>欠费暂停</translation>
    </message>
    <message>
        <source>Normal work</source>
        <translation>普通作业</translation>
    </message>
    <message>
        <source>Rendering work</source>
        <translation>渲染作业</translation>
    </message>
    <message>
        <source>Job Id</source>
        <translation>作业编号</translation>
    </message>
    <message>
        <source>Job Name</source>
        <translation>作业名称</translation>
    </message>
    <message>
        <source>Job Type</source>
        <translation>作业类型</translation>
    </message>
    <message>
        <source>Job Status</source>
        <translation>作业状态</translation>
    </message>
    <message>
        <source>Project Name</source>
        <translation>项目名称</translation>
    </message>
    <message>
        <source>Business Type</source>
        <translation>业务类型</translation>
    </message>
    <message>
        <source>Start Time</source>
        <translation>开始时间</translation>
    </message>
    <message>
        <source>End Time</source>
        <translation>结束时间</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>搜索</translation>
    </message>
    <message>
        <source>Reset</source>
        <translation>重置</translation>
    </message>
</context>
<context>
    <name>VTSetArgument</name>
    <message>
        <source>Prerender</source>
        <translation>预渲染</translation>
    </message>
    <message>
        <source>Image size</source>
        <translation>图像尺寸</translation>
    </message>
    <message>
        <source>Frame range</source>
        <translation>帧范围</translation>
    </message>
    <message>
        <source>Group</source>
        <translation>组数</translation>
    </message>
    <message>
        <source>Ok</source>
        <translation>确定</translation>
    </message>
    <message>
        <source>Start frame must be less than end frame!</source>
        <translation>起始帧必须小于结束帧！</translation>
    </message>
    <message>
        <source>Can not submit more than 1000 frames</source>
        <translation>一次提交不能超过 1000 帧</translation>
    </message>
</context>
<context>
    <name>VTSetParent</name>
    <message>
        <source>Ok</source>
        <translation>确定</translation>
    </message>
    <message>
        <source>The dependency could not be saved. The jobs will be resumed only while the client is running.</source>
        <translation>无法保存依赖关系。仅当客户端运行时，这些作业才会恢复。</translation>
    </message>
</context>
</TS>
