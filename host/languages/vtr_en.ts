<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name>AuthClientForm</name>
    <message>
        <source>Your scenes, rendered on the farm.</source>
        <translation>Your scenes, rendered on the farm.</translation>
    </message>
    <message>
        <source>Minimize</source>
        <translation>Minimize</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Close</translation>
    </message>
    <message>
        <source>Sign in</source>
        <translation>Sign in</translation>
    </message>
    <message>
        <source>Use your farm account.</source>
        <translation>Use your farm account.</translation>
    </message>
    <message>
        <source>User name</source>
        <translation>User name</translation>
    </message>
    <message>
        <source>Password</source>
        <translation>Password</translation>
    </message>
    <message>
        <source>QuillStar Client</source>
        <translation>QuillStar Client</translation>
    </message>
    <message>
        <source>Skin</source>
        <translation>Skin</translation>
    </message>
    <message>
        <source>Language</source>
        <translation>Language</translation>
    </message>
    <message>
        <source>QuillStar logo</source>
        <translation>QuillStar logo</translation>
    </message>
</context>
<context>
    <name>ClientHost</name>
    <message>
        <source>The settings name a server that is not a URL the client can use: %1. Please correct %2 in %3, or clear it to use the embedded farm.</source>
        <translation>The settings name a server that is not a URL the client can use: %1. Please correct %2 in %3, or clear it to use the embedded farm.</translation>
    </message>
</context>
<context>
    <name>ConfigurationDialog</name>
    <message>
        <source>Download folder</source>
        <translation>Download folder</translation>
    </message>
    <message>
        <source>Nothing can be saved in this folder: %1.</source>
        <translation>Nothing can be saved in this folder: %1.</translation>
    </message>
</context>
<context>
    <name>ConfigurationForm</name>
    <message>
        <source>Settings</source>
        <translation>Settings</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Close</translation>
    </message>
    <message>
        <source>Downloads</source>
        <translation>Downloads</translation>
    </message>
    <message>
        <source>Download finished jobs automatically</source>
        <translation>Download finished jobs automatically</translation>
    </message>
    <message>
        <source>Frames arrive as soon as a job is done.</source>
        <translation>Frames arrive as soon as a job is done.</translation>
    </message>
    <message>
        <source>Show a notice when a download has finished</source>
        <translation>Show a notice when a download has finished</translation>
    </message>
    <message>
        <source>In the system tray, for ten seconds.</source>
        <translation>In the system tray, for ten seconds.</translation>
    </message>
    <message>
        <source>Play a sound when a download has finished</source>
        <translation>Play a sound when a download has finished</translation>
    </message>
    <message>
        <source>Through the default audio device.</source>
        <translation>Through the default audio device.</translation>
    </message>
    <message>
        <source>Submission</source>
        <translation>Submission</translation>
    </message>
    <message>
        <source>Offer frame range and image size</source>
        <translation>Offer frame range and image size</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>Ok</source>
        <translation>Ok</translation>
    </message>
    <message>
        <source>Download folder</source>
        <translation>Download folder</translation>
    </message>
    <message>
        <source>Browse</source>
        <translation>Browse</translation>
    </message>
    <message>
        <source>Downloads that have not finished yet go there, too.</source>
        <translation>Downloads that have not finished yet go there, too.</translation>
    </message>
    <message>
        <source>Days in the list after finishing</source>
        <translation>Days in the list after finishing</translation>
    </message>
    <message>
        <source>No limit</source>
        <translation>No limit</translation>
    </message>
    <message>
        <source>Clear finished</source>
        <translation>Clear finished</translation>
    </message>
    <message>
        <source>Files stay on the disk.</source>
        <translation>Files stay on the disk.</translation>
    </message>
    <message>
        <source>Adds an entry to the menu of a local task with a Maya scene.</source>
        <translation>Adds an entry to the menu of a local task with a Maya scene.</translation>
    </message>
</context>
<context>
    <name>ConnectionDialog</name>
    <message>
        <source>Server: the farm on this computer</source>
        <translation>Server: the farm on this computer</translation>
    </message>
    <message>
        <source>Server: %1</source>
        <translation>Server: %1</translation>
    </message>
    <message>
        <source>Nothing has failed in this session.</source>
        <translation>Nothing has failed in this session.</translation>
    </message>
</context>
<context>
    <name>ConnectionForm</name>
    <message>
        <source>Connection</source>
        <translation>Connection</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Close</translation>
    </message>
    <message>
        <source>Latest failures</source>
        <translation>Latest failures</translation>
    </message>
    <message>
        <source>Try again</source>
        <translation>Try again</translation>
    </message>
</context>
<context>
    <name>ConnectionStrip</name>
    <message>
        <source>Opens the list of the latest failures.</source>
        <translation>Opens the list of the latest failures.</translation>
    </message>
</context>
<context>
    <name>ConnectionText</name>
    <message>
        <source>Signing in</source>
        <translation>Signing in</translation>
    </message>
    <message>
        <source>Signing out</source>
        <translation>Signing out</translation>
    </message>
    <message>
        <source>Loading the balance</source>
        <translation>Loading the balance</translation>
    </message>
    <message>
        <source>Loading the projects</source>
        <translation>Loading the projects</translation>
    </message>
    <message>
        <source>Loading the list of jobs</source>
        <translation>Loading the list of jobs</translation>
    </message>
    <message>
        <source>Submitting a job</source>
        <translation>Submitting a job</translation>
    </message>
    <message>
        <source>Stopping jobs</source>
        <translation>Stopping jobs</translation>
    </message>
    <message>
        <source>Recovering jobs</source>
        <translation>Recovering jobs</translation>
    </message>
    <message>
        <source>Restarting jobs</source>
        <translation>Restarting jobs</translation>
    </message>
    <message>
        <source>Deleting jobs</source>
        <translation>Deleting jobs</translation>
    </message>
    <message>
        <source>Starting a full render</source>
        <translation>Starting a full render</translation>
    </message>
    <message>
        <source>Loading the list of frames</source>
        <translation>Loading the list of frames</translation>
    </message>
    <message>
        <source>Downloading a frame</source>
        <translation>Downloading a frame</translation>
    </message>
    <message>
        <source>Loading a job</source>
        <translation>Loading a job</translation>
    </message>
    <message>
        <source>Comparing files with the farm</source>
        <translation>Comparing files with the farm</translation>
    </message>
    <message>
        <source>Unpacking files on the farm</source>
        <translation>Unpacking files on the farm</translation>
    </message>
    <message>
        <source>Uploading files</source>
        <translation>Uploading files</translation>
    </message>
    <message>
        <source>1 frame</source>
        <translation>1 frame</translation>
    </message>
    <message>
        <source>%1 frames</source>
        <translation>%1 frames</translation>
    </message>
    <message>
        <source>%1 times</source>
        <translation>%1 times</translation>
    </message>
    <message>
        <source>Asking the farm</source>
        <translation>Asking the farm</translation>
    </message>
    <message>
        <source>Connected</source>
        <translation>Connected</translation>
    </message>
    <message>
        <source>Trying again…</source>
        <translation>Trying again…</translation>
    </message>
    <message>
        <source>Not reachable since %1, list as of %2</source>
        <translation>Not reachable since %1, list as of %2</translation>
    </message>
    <message>
        <source>Not reachable since %1</source>
        <translation>Not reachable since %1</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>Following changes on the farm</source>
        <translation>Following changes on the farm</translation>
    </message>
    <message>
        <source>Loading the space on the farm</source>
        <translation>Loading the space on the farm</translation>
    </message>
    <message>
        <source>Removing unneeded files</source>
        <translation>Removing unneeded files</translation>
    </message>
    <message>
        <source>Changing the priority of a job</source>
        <translation>Changing the priority of a job</translation>
    </message>
</context>
<context>
    <name>Consent</name>
    <message>
        <source>Cancel</source>
        <translation>Cancel</translation>
    </message>
</context>
<context>
    <name>DownloadQueue</name>
    <message>
        <source>The list of downloads could not be read. It is kept as %1, and a new list has begun.</source>
        <translation>The list of downloads could not be read. It is kept as %1, and a new list has begun.</translation>
    </message>
</context>
<context>
    <name>DownloadWorker</name>
    <message>
        <source>A change to the downloads could not be recorded: %1. The client keeps trying.</source>
        <translation>A change to the downloads could not be recorded: %1. The client keeps trying.</translation>
    </message>
    <message>
        <source>The files of %1 cannot be downloaded: %2</source>
        <translation>The files of %1 cannot be downloaded: %2</translation>
    </message>
    <message>
        <source>%1 has no files to download yet.</source>
        <translation>%1 has no files to download yet.</translation>
    </message>
    <message>
        <source>No download has failed.</source>
        <translation>No download has failed.</translation>
    </message>
</context>
<context>
    <name>FarmFault</name>
    <message>
        <source>the connection was closed before the answer was complete</source>
        <translation>the connection was closed before the answer was complete</translation>
    </message>
    <message>
        <source>there was no answer in time</source>
        <translation>there was no answer in time</translation>
    </message>
    <message>
        <source>the server that answered is not a farm</source>
        <translation>the server that answered is not a farm</translation>
    </message>
    <message>
        <source>the connection was refused</source>
        <translation>the connection was refused</translation>
    </message>
    <message>
        <source>the network knows no computer of this name</source>
        <translation>the network knows no computer of this name</translation>
    </message>
    <message>
        <source>no encrypted connection could be agreed on</source>
        <translation>no encrypted connection could be agreed on</translation>
    </message>
    <message>
        <source>this computer has lost its network</source>
        <translation>this computer has lost its network</translation>
    </message>
    <message>
        <source>this computer is not on a network</source>
        <translation>this computer is not on a network</translation>
    </message>
    <message>
        <source>the network failed, or the connection was closed early</source>
        <translation>the network failed, or the connection was closed early</translation>
    </message>
    <message>
        <source>the proxy refused the connection</source>
        <translation>the proxy refused the connection</translation>
    </message>
    <message>
        <source>the proxy closed the connection</source>
        <translation>the proxy closed the connection</translation>
    </message>
    <message>
        <source>the network knows no proxy of this name</source>
        <translation>the network knows no proxy of this name</translation>
    </message>
    <message>
        <source>the proxy did not answer in time</source>
        <translation>the proxy did not answer in time</translation>
    </message>
    <message>
        <source>the proxy could not pass the request on</source>
        <translation>the proxy could not pass the request on</translation>
    </message>
    <message>
        <source>this computer does not know who has issued it</source>
        <translation>this computer does not know who has issued it</translation>
    </message>
    <message>
        <source>the server has issued it itself</source>
        <translation>the server has issued it itself</translation>
    </message>
    <message>
        <source>it has expired</source>
        <translation>it has expired</translation>
    </message>
    <message>
        <source>it is not valid yet, or this computer&apos;s clock is wrong</source>
        <translation>it is not valid yet, or this computer&apos;s clock is wrong</translation>
    </message>
    <message>
        <source>it belongs to another server</source>
        <translation>it belongs to another server</translation>
    </message>
    <message>
        <source>it has been revoked</source>
        <translation>it has been revoked</translation>
    </message>
    <message>
        <source>it is known to be misused</source>
        <translation>it is known to be misused</translation>
    </message>
    <message>
        <source>the server shows none</source>
        <translation>the server shows none</translation>
    </message>
    <message>
        <source>The files would exceed the account&apos;s space on the farm.</source>
        <translation>The files would exceed the account&apos;s space on the farm.</translation>
    </message>
    <message>
        <source>The farm cannot read the packed files. Please submit the scene again.</source>
        <translation>The farm cannot read the packed files. Please submit the scene again.</translation>
    </message>
    <message>
        <source>The packed files are too large for the farm.</source>
        <translation>The packed files are too large for the farm.</translation>
    </message>
    <message>
        <source>The user name or the password is wrong.</source>
        <translation>The user name or the password is wrong.</translation>
    </message>
    <message>
        <source>The session has ended. Please sign in again.</source>
        <translation>The session has ended. Please sign in again.</translation>
    </message>
    <message>
        <source>There were too many requests. Please try again in a moment.</source>
        <translation>There were too many requests. Please try again in a moment.</translation>
    </message>
    <message>
        <source>An error occurred on the farm. The details are in its log.</source>
        <translation>An error occurred on the farm. The details are in its log.</translation>
    </message>
    <message>
        <source>The farm&apos;s disk is full.</source>
        <translation>The farm&apos;s disk is full.</translation>
    </message>
    <message>
        <source>The farm has no such job.</source>
        <translation>The farm has no such job.</translation>
    </message>
    <message>
        <source>The farm no longer has this upload.</source>
        <translation>The farm no longer has this upload.</translation>
    </message>
    <message>
        <source>The server does not know this request. It may be older than the client.</source>
        <translation>The server does not know this request. It may be older than the client.</translation>
    </message>
    <message>
        <source>The farm does not render jobs of this type.</source>
        <translation>The farm does not render jobs of this type.</translation>
    </message>
    <message>
        <source>The account does not have this project.</source>
        <translation>The account does not have this project.</translation>
    </message>
    <message>
        <source>The farm lacks one of the files.</source>
        <translation>The farm lacks one of the files.</translation>
    </message>
    <message>
        <source>The farm is still working on this upload.</source>
        <translation>The farm is still working on this upload.</translation>
    </message>
    <message>
        <source>The proxy asks for a name and a password, or refuses those it was given.</source>
        <translation>The proxy asks for a name and a password, or refuses those it was given.</translation>
    </message>
    <message>
        <source>The server answered with status %1.</source>
        <translation>The server answered with status %1.</translation>
    </message>
    <message>
        <source>The farm is not running at the moment.</source>
        <translation>The farm is not running at the moment.</translation>
    </message>
    <message>
        <source>The server cannot be reached: %1</source>
        <translation>The server cannot be reached: %1</translation>
    </message>
    <message>
        <source>The server&apos;s certificate is not accepted, so nothing was sent to it: %1</source>
        <translation>The server&apos;s certificate is not accepted, so nothing was sent to it: %1</translation>
    </message>
    <message>
        <source>The server did not answer in time.</source>
        <translation>The server did not answer in time.</translation>
    </message>
    <message>
        <source>The server&apos;s answer is too large.</source>
        <translation>The server&apos;s answer is too large.</translation>
    </message>
    <message>
        <source>The server&apos;s answer cannot be read.</source>
        <translation>The server&apos;s answer cannot be read.</translation>
    </message>
</context>
<context>
    <name>FarmProcess</name>
    <message>
        <source>%1 cannot be started.</source>
        <translation>%1 cannot be started.</translation>
    </message>
    <message>
        <source>It ended without saying why.</source>
        <translation>It ended without saying why.</translation>
    </message>
    <message>
        <source>It did not start in time.</source>
        <translation>It did not start in time.</translation>
    </message>
    <message>
        <source>It crashed or was killed.</source>
        <translation>It crashed or was killed.</translation>
    </message>
</context>
<context>
    <name>FarmProtocol</name>
    <message>
        <source>The server&apos;s answer is incomplete.</source>
        <translation>The server&apos;s answer is incomplete.</translation>
    </message>
</context>
<context>
    <name>FilterBar</name>
    <message>
        <source>Found: %1</source>
        <translation>Found: %1</translation>
    </message>
</context>
<context>
    <name>FilterMenu</name>
    <message>
        <source>Add a group…</source>
        <translation>Add a group…</translation>
    </message>
    <message>
        <source>Delete the group %1</source>
        <translation>Delete the group %1</translation>
    </message>
</context>
<context>
    <name>FilterText</name>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>Group</source>
        <translation>Group</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>Search</translation>
    </message>
    <message>
        <source>, </source>
        <translation>, </translation>
    </message>
</context>
<context>
    <name>FinishNotice</name>
    <message>
        <source>%1: %2 frames</source>
        <translation>%1: %2 frames</translation>
    </message>
    <message>
        <source>%1 and %2: %3 frames</source>
        <translation>%1 and %2: %3 frames</translation>
    </message>
    <message>
        <source>%1 jobs: %2 frames</source>
        <translation>%1 jobs: %2 frames</translation>
    </message>
</context>
<context>
    <name>FormClosing</name>
    <message>
        <source>QuillStar is still running</source>
        <translation>QuillStar is still running</translation>
    </message>
    <message>
        <source>Transfers continue. Double-click this icon to open the window again.</source>
        <translation>Transfers continue. Double-click this icon to open the window again.</translation>
    </message>
</context>
<context>
    <name>FrameCharts</name>
    <message>
        <source>No frame is finished yet.</source>
        <translation>No frame is finished yet.</translation>
    </message>
    <message>
        <source>Frame %1: %2</source>
        <translation>Frame %1: %2</translation>
    </message>
    <message>
        <source>Frames %1 to %2: at most %3</source>
        <translation>Frames %1 to %2: at most %3</translation>
    </message>
    <message>
        <source>Chart of the frame times</source>
        <translation>Chart of the frame times</translation>
    </message>
    <message>
        <source>%1 finished frames took %2 each on average, and at most %3.</source>
        <translation>%1 finished frames took %2 each on average, and at most %3.</translation>
    </message>
    <message>
        <source>Nothing was charged in this period.</source>
        <translation>Nothing was charged in this period.</translation>
    </message>
    <message>
        <source>Chart of the account&apos;s spending by day</source>
        <translation>Chart of the account&apos;s spending by day</translation>
    </message>
    <message>
        <source>%1 in the last %2 days.</source>
        <translation>%1 in the last %2 days.</translation>
    </message>
</context>
<context>
    <name>FrameModel</name>
    <message>
        <source>Frame</source>
        <translation>Frame</translation>
    </message>
    <message>
        <source>State</source>
        <translation>State</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Time</translation>
    </message>
    <message>
        <source>Cost</source>
        <translation>Cost</translation>
    </message>
    <message>
        <source>Attempts</source>
        <translation>Attempts</translation>
    </message>
    <message>
        <source>Rendering</source>
        <translation>Rendering</translation>
    </message>
    <message>
        <source>Finished</source>
        <translation>Finished</translation>
    </message>
    <message>
        <source>Failed</source>
        <translation>Failed</translation>
    </message>
    <message>
        <source>Waiting</source>
        <translation>Waiting</translation>
    </message>
    <message>
        <source>%1 s</source>
        <translation>%1 s</translation>
    </message>
    <message>
        <source>%1 min %2 s</source>
        <translation>%1 min %2 s</translation>
    </message>
    <message>
        <source>%1 h %2 min</source>
        <translation>%1 h %2 min</translation>
    </message>
    <message>
        <source>%1 ms</source>
        <translation>%1 ms</translation>
    </message>
</context>
<context>
    <name>FrameRequests</name>
    <message>
        <source>The server&apos;s answer cannot be read.</source>
        <translation>The server&apos;s answer cannot be read.</translation>
    </message>
</context>
<context>
    <name>FramesForm</name>
    <message>
        <source>Frames</source>
        <translation>Frames</translation>
    </message>
    <message>
        <source>Close (Esc)</source>
        <translation>Close (Esc)</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Close</translation>
    </message>
    <message>
        <source>Show picture</source>
        <translation>Show picture</translation>
    </message>
    <message>
        <source>Show the picture (Enter)</source>
        <translation>Show the picture (Enter)</translation>
    </message>
    <message>
        <source>Log of the frame</source>
        <translation>Log of the frame</translation>
    </message>
    <message>
        <source>Frame times</source>
        <translation>Frame times</translation>
    </message>
    <message>
        <source>Spending by day</source>
        <translation>Spending by day</translation>
    </message>
    <message>
        <source>The charges of the account in the last 30 days</source>
        <translation>The charges of the account in the last 30 days</translation>
    </message>
    <message>
        <source>Priority</source>
        <translation>Priority</translation>
    </message>
    <message>
        <source>Among your own jobs, those with a higher priority are rendered first (-100 to 100).</source>
        <translation>Among your own jobs, those with a higher priority are rendered first (-100 to 100).</translation>
    </message>
</context>
<context>
    <name>FramesWindow</name>
    <message>
        <source>Frames of %1</source>
        <translation>Frames of %1</translation>
    </message>
    <message>
        <source>%1 of %2 frames finished</source>
        <translation>%1 of %2 frames finished</translation>
    </message>
    <message>
        <source>%1 being rendered</source>
        <translation>%1 being rendered</translation>
    </message>
    <message>
        <source>%1 failed</source>
        <translation>%1 failed</translation>
    </message>
    <message>
        <source>%1 a frame</source>
        <translation>%1 a frame</translation>
    </message>
    <message>
        <source>The job has failed: %1</source>
        <translation>The job has failed: %1</translation>
    </message>
    <message>
        <source>Frame %1: %2</source>
        <translation>Frame %1: %2</translation>
    </message>
    <message>
        <source>There is no log of this frame: no attempt has ended yet, or the renderer wrote nothing.</source>
        <translation>There is no log of this frame: no attempt has ended yet, or the renderer wrote nothing.</translation>
    </message>
</context>
<context>
    <name>InputDialogForm</name>
    <message>
        <source>Group name</source>
        <translation>Group name</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Close</translation>
    </message>
    <message>
        <source>Or one of your projects, whose jobs it then lists:</source>
        <translation>Or one of your projects, whose jobs it then lists:</translation>
    </message>
    <message>
        <source>Projects</source>
        <translation>Projects</translation>
    </message>
</context>
<context>
    <name>JobPictures</name>
    <message>
        <source>The farm no longer has this picture.</source>
        <translation>The farm no longer has this picture.</translation>
    </message>
    <message>
        <source>The picture is too large to be shown before it is downloaded.</source>
        <translation>The picture is too large to be shown before it is downloaded.</translation>
    </message>
</context>
<context>
    <name>ListHint</name>
    <message>
        <source>No jobs yet</source>
        <translation>No jobs yet</translation>
    </message>
    <message>
        <source>Press Submit or drop a scene here.</source>
        <translation>Press Submit or drop a scene here.</translation>
    </message>
    <message>
        <source>No jobs match</source>
        <translation>No jobs match</translation>
    </message>
    <message>
        <source>The search or group above the list hides all others.</source>
        <translation>The search or group above the list hides all others.</translation>
    </message>
    <message>
        <source>Show all jobs</source>
        <translation>Show all jobs</translation>
    </message>
    <message>
        <source>No scene is on its way to the farm</source>
        <translation>No scene is on its way to the farm</translation>
    </message>
    <message>
        <source>No downloads yet</source>
        <translation>No downloads yet</translation>
    </message>
    <message>
        <source>Right-click a job under My Render and choose Download, or let the settings download finished jobs.</source>
        <translation>Right-click a job under My Render and choose Download, or let the settings download finished jobs.</translation>
    </message>
    <message>
        <source>No groups yet</source>
        <translation>No groups yet</translation>
    </message>
    <message>
        <source>A group lists the jobs of one of your projects.</source>
        <translation>A group lists the jobs of one of your projects.</translation>
    </message>
    <message>
        <source>Add a group…</source>
        <translation>Add a group…</translation>
    </message>
</context>
<context>
    <name>LoginPrompt</name>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Password</source>
        <translation>Password</translation>
    </message>
    <message>
        <source>Ok</source>
        <translation>Ok</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Cancel</translation>
    </message>
</context>
<context>
    <name>MessageBoxForm</name>
    <message>
        <source>Close</source>
        <translation>Close</translation>
    </message>
    <message>
        <source>Details</source>
        <translation>Details</translation>
    </message>
</context>
<context>
    <name>MessageBoxService</name>
    <message>
        <source>Ok</source>
        <translation>Ok</translation>
    </message>
</context>
<context>
    <name>NoticeBoard</name>
    <message>
        <source>QuillStar Client</source>
        <translation>QuillStar Client</translation>
    </message>
    <message>
        <source>Ok</source>
        <translation>Ok</translation>
    </message>
</context>
<context>
    <name>PictureFetch</name>
    <message>
        <source>The server did not answer in time.</source>
        <translation>The server did not answer in time.</translation>
    </message>
    <message>
        <source>The temporary folder cannot be written.</source>
        <translation>The temporary folder cannot be written.</translation>
    </message>
    <message>
        <source>The farm is not running at the moment.</source>
        <translation>The farm is not running at the moment.</translation>
    </message>
    <message>
        <source>The picture has changed on the farm.</source>
        <translation>The picture has changed on the farm.</translation>
    </message>
</context>
<context>
    <name>PreviewWindow</name>
    <message>
        <source>%1 of %2</source>
        <translation>%1 of %2</translation>
    </message>
    <message>
        <source>%1 × %2 pixels</source>
        <translation>%1 × %2 pixels</translation>
    </message>
    <message>
        <source>The file does not exist or cannot be read.</source>
        <translation>The file does not exist or cannot be read.</translation>
    </message>
    <message>
        <source>The file is not a picture that can be shown here.</source>
        <translation>The file is not a picture that can be shown here.</translation>
    </message>
    <message>
        <source>The picture is too large to be shown here.</source>
        <translation>The picture is too large to be shown here.</translation>
    </message>
    <message>
        <source>The picture is damaged.</source>
        <translation>The picture is damaged.</translation>
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
        <translation>Preview</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Close</translation>
    </message>
    <message>
        <source>Previous picture</source>
        <translation>Previous picture</translation>
    </message>
    <message>
        <source>Next picture</source>
        <translation>Next picture</translation>
    </message>
    <message>
        <source>Show in actual size</source>
        <translation>Show in actual size</translation>
    </message>
    <message>
        <source>Close (Esc)</source>
        <translation>Close (Esc)</translation>
    </message>
    <message>
        <source>Previous picture (Left)</source>
        <translation>Previous picture (Left)</translation>
    </message>
    <message>
        <source>Play or pause (Space)</source>
        <translation>Play or pause (Space)</translation>
    </message>
    <message>
        <source>Play</source>
        <translation>Play</translation>
    </message>
    <message>
        <source>Next picture (Right)</source>
        <translation>Next picture (Right)</translation>
    </message>
    <message>
        <source>Zoom out (-)</source>
        <translation>Zoom out (-)</translation>
    </message>
    <message>
        <source>Zoom out</source>
        <translation>Zoom out</translation>
    </message>
    <message>
        <source>Zoom in (+)</source>
        <translation>Zoom in (+)</translation>
    </message>
    <message>
        <source>Zoom in</source>
        <translation>Zoom in</translation>
    </message>
    <message>
        <source>Fit into the window (0)</source>
        <translation>Fit into the window (0)</translation>
    </message>
    <message>
        <source>Fit into the window</source>
        <translation>Fit into the window</translation>
    </message>
    <message>
        <source>Show in actual size (1)</source>
        <translation>Show in actual size (1)</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Waiting</source>
        <translation>Waiting</translation>
    </message>
    <message>
        <source>Running</source>
        <translation>Running</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>Paused</translation>
    </message>
    <message>
        <source>Pending</source>
        <translation>Pending</translation>
    </message>
    <message>
        <source>Finished</source>
        <translation>Finished</translation>
    </message>
    <message>
        <source>Deleted</source>
        <translation>Deleted</translation>
    </message>
    <message>
        <source>To full render</source>
        <translation>To full render</translation>
    </message>
    <message>
        <source>Failed</source>
        <translation>Failed</translation>
    </message>
    <message>
        <source>Arrears</source>
        <translation>Arrears</translation>
    </message>
    <message>
        <source>Pause due to arrears</source>
        <translation>Paused due to arrears</translation>
    </message>
    <message>
        <source>Unknown</source>
        <translation>Unknown</translation>
    </message>
    <message>
        <source>Sequence</source>
        <translation>Sequence</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Start Time</source>
        <translation>Start Time</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>Progress</translation>
    </message>
    <message>
        <source>Status</source>
        <translation>Status</translation>
    </message>
    <message>
        <source>Cost</source>
        <translation>Cost</translation>
    </message>
    <message>
        <source>Module %1 is invalid</source>
        <translation>Module %1 is invalid</translation>
    </message>
    <message>
        <source>[%1] Module %2 is invalid</source>
        <translation>[%1] Module %2 is invalid</translation>
    </message>
</context>
<context>
    <name>QsClientForm</name>
    <message>
        <source>QuillStar Client</source>
        <translation>QuillStar Client</translation>
    </message>
    <message>
        <source>Sign out</source>
        <translation>Sign out</translation>
    </message>
    <message>
        <source>Show all jobs</source>
        <translation>Show all jobs</translation>
    </message>
    <message>
        <source>Clear the search or group</source>
        <translation>Clear the search or group</translation>
    </message>
    <message>
        <source>Pause all</source>
        <translation>Pause all</translation>
    </message>
    <message>
        <source>Pause all local tasks, even across a restart</source>
        <translation>Pause all local tasks, even across a restart</translation>
    </message>
    <message>
        <source>Resume all</source>
        <translation>Resume all</translation>
    </message>
    <message>
        <source>Resume all paused tasks</source>
        <translation>Resume all paused tasks</translation>
    </message>
    <message>
        <source>Retry failed</source>
        <translation>Retry failed</translation>
    </message>
    <message>
        <source>Try all failed downloads again</source>
        <translation>Try all failed downloads again</translation>
    </message>
    <message>
        <source>Open folder</source>
        <translation>Open folder</translation>
    </message>
    <message>
        <source>Open the folder for downloads</source>
        <translation>Open the folder for downloads</translation>
    </message>
    <message>
        <source>Check or uncheck all rows of this page</source>
        <translation>Check or uncheck all rows of this page</translation>
    </message>
    <message>
        <source>Groups</source>
        <translation>Groups</translation>
    </message>
    <message>
        <source>Messages</source>
        <translation>Messages</translation>
    </message>
    <message>
        <source>Skin</source>
        <translation>Skin</translation>
    </message>
    <message>
        <source>Language</source>
        <translation>Language</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Settings</translation>
    </message>
    <message>
        <source>Minimize to the tray</source>
        <translation>Minimize to the tray</translation>
    </message>
    <message>
        <source>Maximize</source>
        <translation>Maximize</translation>
    </message>
    <message>
        <source>Restore</source>
        <translation>Restore</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>Quit</translation>
    </message>
    <message>
        <source>Farm jobs</source>
        <translation>Farm jobs</translation>
    </message>
    <message>
        <source>Local tasks</source>
        <translation>Local tasks</translation>
    </message>
    <message>
        <source>Downloads</source>
        <translation>Downloads</translation>
    </message>
    <message>
        <source>Next page</source>
        <translation>Next page</translation>
    </message>
    <message>
        <source>Next five pages</source>
        <translation>Next five pages</translation>
    </message>
    <message>
        <source>Previous five pages</source>
        <translation>Previous five pages</translation>
    </message>
    <message>
        <source>Previous page</source>
        <translation>Previous page</translation>
    </message>
    <message>
        <source>Account</source>
        <translation>Account</translation>
    </message>
    <message>
        <source>Choose which jobs are listed</source>
        <translation>Choose which jobs are listed</translation>
    </message>
    <message>
        <source>QuillStar logo</source>
        <translation>QuillStar logo</translation>
    </message>
    <message>
        <source>Space on the farm</source>
        <translation>Space on the farm</translation>
    </message>
</context>
<context>
    <name>SceneIntake</name>
    <message>
        <source>QuillStar Client</source>
        <translation>QuillStar Client</translation>
    </message>
    <message>
        <source>These scenes cannot be submitted:</source>
        <translation>These scenes cannot be submitted:</translation>
    </message>
    <message>
        <source>Ok</source>
        <translation>Ok</translation>
    </message>
    <message>
        <source>Submit a scene</source>
        <translation>Submit a scene</translation>
    </message>
    <message>
        <source>These scenes are in the list of local tasks already. Continue or delete their tasks there:</source>
        <translation>These scenes are in the list of local tasks already. Continue or delete their tasks there:</translation>
    </message>
    <message>
        <source>Scenes (%1)</source>
        <translation>Scenes (%1)</translation>
    </message>
</context>
<context>
    <name>SearchForm</name>
    <message>
        <source>Search jobs</source>
        <translation>Search jobs</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Close</translation>
    </message>
    <message>
        <source>Earliest start time</source>
        <translation>Earliest start time</translation>
    </message>
    <message>
        <source>Latest start time</source>
        <translation>Latest start time</translation>
    </message>
    <message>
        <source>Earliest end time</source>
        <translation>Earliest end time</translation>
    </message>
    <message>
        <source>Latest end time</source>
        <translation>Latest end time</translation>
    </message>
    <message>
        <source>Number in the list</source>
        <translation>Number in the list</translation>
    </message>
</context>
<context>
    <name>SessionControl</name>
    <message>
        <source>Your session has ended. Please sign in again.</source>
        <translation>Your session has ended. Please sign in again.</translation>
    </message>
    <message>
        <source>Sign out</source>
        <translation>Sign out</translation>
    </message>
    <message>
        <source>The user name or the password is wrong.</source>
        <translation>The user name or the password is wrong.</translation>
    </message>
    <message>
        <source>Too many attempts. Please try again in a moment.</source>
        <translation>Too many attempts. Please try again in a moment.</translation>
    </message>
    <message>
        <source>Sign in</source>
        <translation>Sign in</translation>
    </message>
    <message>
        <source>The connection to %1 is not encrypted, so others on the network can read your password. Send it anyway?</source>
        <translation>The connection to %1 is not encrypted, so others on the network can read your password. Send it anyway?</translation>
    </message>
    <message>
        <source>Send</source>
        <translation>Send</translation>
    </message>
    <message>
        <source>Open QuillStar</source>
        <translation>Open QuillStar</translation>
    </message>
    <message>
        <source>The proxy %1 asks for a name and a password.</source>
        <translation>The proxy %1 asks for a name and a password.</translation>
    </message>
</context>
<context>
    <name>SetArgumentForm</name>
    <message>
        <source>Render arguments</source>
        <translation>Render arguments</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Close</translation>
    </message>
    <message>
        <source>First and last frame of each group</source>
        <translation>First and last frame of each group</translation>
    </message>
    <message>
        <source>Number of frame ranges</source>
        <translation>Number of frame ranges</translation>
    </message>
    <message>
        <source>First frame of range 1</source>
        <translation>First frame of range 1</translation>
    </message>
    <message>
        <source>Last frame of range 1</source>
        <translation>Last frame of range 1</translation>
    </message>
    <message>
        <source>First frame of range 2</source>
        <translation>First frame of range 2</translation>
    </message>
    <message>
        <source>Last frame of range 2</source>
        <translation>Last frame of range 2</translation>
    </message>
    <message>
        <source>First frame of range 3</source>
        <translation>First frame of range 3</translation>
    </message>
    <message>
        <source>Last frame of range 3</source>
        <translation>Last frame of range 3</translation>
    </message>
    <message>
        <source>First frame of range 4</source>
        <translation>First frame of range 4</translation>
    </message>
    <message>
        <source>Last frame of range 4</source>
        <translation>Last frame of range 4</translation>
    </message>
    <message>
        <source>First frame of range 5</source>
        <translation>First frame of range 5</translation>
    </message>
    <message>
        <source>Last frame of range 5</source>
        <translation>Last frame of range 5</translation>
    </message>
    <message>
        <source>First frame of range 6</source>
        <translation>First frame of range 6</translation>
    </message>
    <message>
        <source>Last frame of range 6</source>
        <translation>Last frame of range 6</translation>
    </message>
    <message>
        <source>First frame of range 7</source>
        <translation>First frame of range 7</translation>
    </message>
    <message>
        <source>Last frame of range 7</source>
        <translation>Last frame of range 7</translation>
    </message>
    <message>
        <source>First frame of range 8</source>
        <translation>First frame of range 8</translation>
    </message>
    <message>
        <source>Last frame of range 8</source>
        <translation>Last frame of range 8</translation>
    </message>
    <message>
        <source>First frame of range 9</source>
        <translation>First frame of range 9</translation>
    </message>
    <message>
        <source>Last frame of range 9</source>
        <translation>Last frame of range 9</translation>
    </message>
    <message>
        <source>First frame of range 10</source>
        <translation>First frame of range 10</translation>
    </message>
    <message>
        <source>Last frame of range 10</source>
        <translation>Last frame of range 10</translation>
    </message>
    <message>
        <source>First frame of range 11</source>
        <translation>First frame of range 11</translation>
    </message>
    <message>
        <source>Last frame of range 11</source>
        <translation>Last frame of range 11</translation>
    </message>
    <message>
        <source>First frame of range 12</source>
        <translation>First frame of range 12</translation>
    </message>
    <message>
        <source>Last frame of range 12</source>
        <translation>Last frame of range 12</translation>
    </message>
    <message>
        <source>First frame of range 13</source>
        <translation>First frame of range 13</translation>
    </message>
    <message>
        <source>Last frame of range 13</source>
        <translation>Last frame of range 13</translation>
    </message>
    <message>
        <source>First frame of range 14</source>
        <translation>First frame of range 14</translation>
    </message>
    <message>
        <source>Last frame of range 14</source>
        <translation>Last frame of range 14</translation>
    </message>
    <message>
        <source>First frame of range 15</source>
        <translation>First frame of range 15</translation>
    </message>
    <message>
        <source>Last frame of range 15</source>
        <translation>Last frame of range 15</translation>
    </message>
    <message>
        <source>Image width</source>
        <translation>Image width</translation>
    </message>
    <message>
        <source>Image height</source>
        <translation>Image height</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Cancel</translation>
    </message>
</context>
<context>
    <name>SetParentForm</name>
    <message>
        <source>Set parent jobs</source>
        <translation>Set parent jobs</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Close</translation>
    </message>
    <message>
        <source>The chosen jobs wait until every job checked here has finished.</source>
        <translation>The chosen jobs wait until every job checked here has finished.</translation>
    </message>
    <message>
        <source>Jobs to wait for</source>
        <translation>Jobs to wait for</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Cancel</translation>
    </message>
</context>
<context>
    <name>SideColumn</name>
    <message>
        <source>No project chosen</source>
        <translation>No project chosen</translation>
    </message>
</context>
<context>
    <name>SignInWindow</name>
    <message>
        <source>Signing in…</source>
        <translation>Signing in…</translation>
    </message>
    <message>
        <source>Sign in</source>
        <translation>Sign in</translation>
    </message>
    <message>
        <source>Server: the farm on this computer</source>
        <translation>Server: the farm on this computer</translation>
    </message>
    <message>
        <source>Server: %1</source>
        <translation>Server: %1</translation>
    </message>
    <message>
        <source>The farm on this computer does not start: %1</source>
        <translation>The farm on this computer does not start: %1</translation>
    </message>
    <message>
        <source>Starting the farm…</source>
        <translation>Starting the farm…</translation>
    </message>
    <message>
        <source>Try again</source>
        <translation>Try again</translation>
    </message>
</context>
<context>
    <name>SpaceControl</name>
    <message>
        <source>Delete 1 job and free up to %1 of your space on the farm?</source>
        <translation>Delete 1 job and free up to %1 of your space on the farm?</translation>
    </message>
    <message>
        <source>Delete %1 jobs and free up to %2 of your space on the farm?</source>
        <translation>Delete %1 jobs and free up to %2 of your space on the farm?</translation>
    </message>
    <message>
        <source>Their pictures there (%1) are deleted, too.</source>
        <translation>Their pictures there (%1) are deleted, too.</translation>
    </message>
    <message>
        <source>Jobs that have not ended yet: %1.</source>
        <translation>Jobs that have not ended yet: %1.</translation>
    </message>
    <message>
        <source>Space on the farm</source>
        <translation>Space on the farm</translation>
    </message>
    <message>
        <source>The server&apos;s answer cannot be read.</source>
        <translation>The server&apos;s answer cannot be read.</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Delete</translation>
    </message>
    <message>
        <source>Remove %1 of files that no job needs? Scenes that use them have to send them again.</source>
        <translation>Remove %1 of files that no job needs? Scenes that use them have to send them again.</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Remove</translation>
    </message>
</context>
<context>
    <name>SpaceDialog</name>
    <message>
        <source>%1 of %2 used</source>
        <translation>%1 of %2 used</translation>
    </message>
    <message>
        <source>Asking the farm…</source>
        <translation>Asking the farm…</translation>
    </message>
    <message>
        <source>Check the jobs that you no longer need.</source>
        <translation>Check the jobs that you no longer need.</translation>
    </message>
    <message>
        <source>No job has files on the farm.</source>
        <translation>No job has files on the farm.</translation>
    </message>
    <message>
        <source>Checked: %1 (files %2, pictures %3)</source>
        <translation>Checked: %1 (files %2, pictures %3)</translation>
    </message>
    <message>
        <source>Unfinished uploads take %1 of it.</source>
        <translation>Unfinished uploads take %1 of it.</translation>
    </message>
    <message>
        <source>No job needs %1 of it.</source>
        <translation>No job needs %1 of it.</translation>
    </message>
    <message>
        <source>Finished pictures take another %1, which does not count.</source>
        <translation>Finished pictures take another %1, which does not count.</translation>
    </message>
    <message>
        <source>Only the %1 largest jobs are listed.</source>
        <translation>Only the %1 largest jobs are listed.</translation>
    </message>
</context>
<context>
    <name>SpaceForm</name>
    <message>
        <source>Space on the farm</source>
        <translation>Space on the farm</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Close</translation>
    </message>
    <message>
        <source>Used space</source>
        <translation>Used space</translation>
    </message>
    <message>
        <source>Jobs, the largest files first</source>
        <translation>Jobs, the largest files first</translation>
    </message>
    <message>
        <source>Jobs with files on the farm</source>
        <translation>Jobs with files on the farm</translation>
    </message>
    <message>
        <source>Space checks a job, Delete deletes the checked ones.</source>
        <translation>Space checks a job, Delete deletes the checked ones.</translation>
    </message>
    <message>
        <source>Remove unneeded files</source>
        <translation>Remove unneeded files</translation>
    </message>
    <message>
        <source>Removes the files that no job needs</source>
        <translation>Removes the files that no job needs</translation>
    </message>
    <message>
        <source>Delete jobs</source>
        <translation>Delete jobs</translation>
    </message>
    <message>
        <source>Deletes the checked jobs, after a question</source>
        <translation>Deletes the checked jobs, after a question</translation>
    </message>
    <message>
        <source>Show more</source>
        <translation>Show more</translation>
    </message>
    <message>
        <source>Lists further, smaller jobs</source>
        <translation>Lists further, smaller jobs</translation>
    </message>
</context>
<context>
    <name>SpaceModel</name>
    <message>
        <source>Sequence</source>
        <translation>Sequence</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Status</source>
        <translation>Status</translation>
    </message>
    <message>
        <source>Files</source>
        <translation>Files</translation>
    </message>
    <message>
        <source>Pictures</source>
        <translation>Pictures</translation>
    </message>
</context>
<context>
    <name>SpaceOffer</name>
    <message>
        <source>Space on the farm</source>
        <translation>Space on the farm</translation>
    </message>
    <message>
        <source>The files of these scenes would exceed your space on the farm. Show what takes the space?</source>
        <translation>The files of these scenes would exceed your space on the farm. Show what takes the space?</translation>
    </message>
    <message>
        <source>Show</source>
        <translation>Show</translation>
    </message>
</context>
<context>
    <name>SubmitQueue</name>
    <message>
        <source>The list of submissions could not be read. It is kept as %1, and a new list has begun.</source>
        <translation>The list of submissions could not be read. It is kept as %1, and a new list has begun.</translation>
    </message>
</context>
<context>
    <name>SubmitRules</name>
    <message>
        <source>Texture missing</source>
        <translation>Texture missing</translation>
    </message>
    <message>
        <source>Check arguments</source>
        <translation>Check arguments</translation>
    </message>
    <message>
        <source>Paused</source>
        <translation>Paused</translation>
    </message>
    <message>
        <source>Submission failed</source>
        <translation>Submission failed</translation>
    </message>
    <message>
        <source>No space left</source>
        <translation>No space left</translation>
    </message>
</context>
<context>
    <name>TaskMessage</name>
    <message>
        <source>The farm cannot be reached. Trying again.</source>
        <translation>The farm cannot be reached. Trying again.</translation>
    </message>
    <message>
        <source>The farm is busy. Trying again.</source>
        <translation>The farm is busy. Trying again.</translation>
    </message>
    <message>
        <source>The farm&apos;s disk is full. Trying again.</source>
        <translation>The farm&apos;s disk is full. Trying again.</translation>
    </message>
    <message>
        <source>Your session has ended. Please sign in again.</source>
        <translation>Your session has ended. Please sign in again.</translation>
    </message>
    <message>
        <source>The farm has failed several times. Please continue the submission later.</source>
        <translation>The farm has failed several times. Please continue the submission later.</translation>
    </message>
    <message>
        <source>The scene needs too many files, or their paths are too long.</source>
        <translation>The scene needs too many files, or their paths are too long.</translation>
    </message>
    <message>
        <source>The scene needs more than %1 files.</source>
        <translation>The scene needs more than %1 files.</translation>
    </message>
    <message>
        <source>Stopped.</source>
        <translation>Stopped.</translation>
    </message>
    <message>
        <source>Not submitted, because files are missing.</source>
        <translation>Not submitted, because files are missing.</translation>
    </message>
    <message>
        <source>Please check the arguments, then continue.</source>
        <translation>Please check the arguments, then continue.</translation>
    </message>
    <message>
        <source>The scene file cannot be read.</source>
        <translation>The scene file cannot be read.</translation>
    </message>
    <message>
        <source>A file of the scene cannot be read: %1</source>
        <translation>A file of the scene cannot be read: %1</translation>
    </message>
    <message>
        <source>The submission could not be recorded. The disk may be full.</source>
        <translation>The submission could not be recorded. The disk may be full.</translation>
    </message>
    <message>
        <source>The name of the scene file contains characters that the farm does not accept.</source>
        <translation>The name of the scene file contains characters that the farm does not accept.</translation>
    </message>
    <message>
        <source>The folder for packed files cannot be created. The disk may be full.</source>
        <translation>The folder for packed files cannot be created. The disk may be full.</translation>
    </message>
    <message>
        <source>A file cannot be read: %1</source>
        <translation>A file cannot be read: %1</translation>
    </message>
    <message>
        <source>A file cannot be packed: %1</source>
        <translation>A file cannot be packed: %1</translation>
    </message>
    <message>
        <source>A package cannot be written: %1</source>
        <translation>A package cannot be written: %1</translation>
    </message>
    <message>
        <source>The packed file cannot be read from the disk.</source>
        <translation>The packed file cannot be read from the disk.</translation>
    </message>
    <message>
        <source>The farm did not store the uploaded data. Please try again later.</source>
        <translation>The farm did not store the uploaded data. Please try again later.</translation>
    </message>
    <message>
        <source>The file arrived damaged at the farm.</source>
        <translation>The file arrived damaged at the farm.</translation>
    </message>
    <message>
        <source>The farm&apos;s answer about an upload cannot be read.</source>
        <translation>The farm&apos;s answer about an upload cannot be read.</translation>
    </message>
    <message>
        <source>The farm&apos;s answer is incomplete. Please continue the submission later.</source>
        <translation>The farm&apos;s answer is incomplete. Please continue the submission later.</translation>
    </message>
    <message>
        <source>%1 files belong to the scene:</source>
        <translation>%1 files belong to the scene:</translation>
    </message>
    <message>
        <source>Submitted as job %1.</source>
        <translation>Submitted as job %1.</translation>
    </message>
    <message>
        <source>Blender is reading the scene.</source>
        <translation>Blender is reading the scene.</translation>
    </message>
    <message>
        <source>Blender is not installed on this computer, so nobody can tell which files the scene needs. Please install it, then submit the scene again.</source>
        <translation>Blender is not installed on this computer, so nobody can tell which files the scene needs. Please install it, then submit the scene again.</translation>
    </message>
    <message>
        <source>Blender could not read the scene, or took more than ten minutes.</source>
        <translation>Blender could not read the scene, or took more than ten minutes.</translation>
    </message>
    <message>
        <source>The scene is made for the engine %1; the farm will render it with Cycles if you go on.</source>
        <translation>The scene is made for the engine %1; the farm will render it with Cycles if you go on.</translation>
    </message>
    <message>
        <source>The scene&apos;s first frame is %1; the farm will render it as frame 1, and so on, if you go on.</source>
        <translation>The scene&apos;s first frame is %1; the farm will render it as frame 1, and so on, if you go on.</translation>
    </message>
    <message>
        <source>The scene has the frames %1 to %2; the farm will render only %3 to %4 if you go on.</source>
        <translation>The scene has the frames %1 to %2; the farm will render only %3 to %4 if you go on.</translation>
    </message>
    <message>
        <source>%1 (use a path relative to the scene)</source>
        <translation>%1 (use a path relative to the scene)</translation>
    </message>
    <message>
        <source>%1 (outside the scene&apos;s folder; will be sent if you go on)</source>
        <translation>%1 (outside the scene&apos;s folder; will be sent if you go on)</translation>
    </message>
    <message>
        <source>The farm is not available at the moment.</source>
        <translation>The farm is not available at the moment.</translation>
    </message>
    <message>
        <source>The farm has stopped sending %1.</source>
        <translation>The farm has stopped sending %1.</translation>
    </message>
    <message>
        <source>The transfer of %1 was interrupted.</source>
        <translation>The transfer of %1 was interrupted.</translation>
    </message>
    <message>
        <source>The transfer of %1 was interrupted: %2</source>
        <translation>The transfer of %1 was interrupted: %2</translation>
    </message>
    <message>
        <source>The farm cannot send %1 at the moment: %2</source>
        <translation>The farm cannot send %1 at the moment: %2</translation>
    </message>
    <message>
        <source>The farm refuses to send %1: %2</source>
        <translation>The farm refuses to send %1: %2</translation>
    </message>
    <message>
        <source>%1 The next attempt is in %2 s.</source>
        <translation>%1 The next attempt is in %2 s.</translation>
    </message>
    <message>
        <source>%1 has changed on the farm.</source>
        <translation>%1 has changed on the farm.</translation>
    </message>
    <message>
        <source>The size of %1 has changed on the farm.</source>
        <translation>The size of %1 has changed on the farm.</translation>
    </message>
    <message>
        <source>The farm sent a different part of %1 than requested.</source>
        <translation>The farm sent a different part of %1 than requested.</translation>
    </message>
    <message>
        <source>The farm sent more data for %1 than announced.</source>
        <translation>The farm sent more data for %1 than announced.</translation>
    </message>
    <message>
        <source>%1 arrived damaged: its checksum is wrong.</source>
        <translation>%1 arrived damaged: its checksum is wrong.</translation>
    </message>
    <message>
        <source>The farm no longer has %1.</source>
        <translation>The farm no longer has %1.</translation>
    </message>
    <message>
        <source>The farm lists %1, but does not send it.</source>
        <translation>The farm lists %1, but does not send it.</translation>
    </message>
    <message>
        <source>The folder %1 is a link that leads out of the download folder, so nothing is saved there.</source>
        <translation>The folder %1 is a link that leads out of the download folder, so nothing is saved there.</translation>
    </message>
    <message>
        <source>%1 cannot be saved: %2.</source>
        <translation>%1 cannot be saved: %2.</translation>
    </message>
    <message>
        <source>Another file named %1 is in the way.</source>
        <translation>Another file named %1 is in the way.</translation>
    </message>
    <message>
        <source>%1 was saved, but its state could not be recorded. The disk may be full.</source>
        <translation>%1 was saved, but its state could not be recorded. The disk may be full.</translation>
    </message>
</context>
<context>
    <name>TransferButtons</name>
    <message>
        <source>Please check the downloads first.</source>
        <translation>Please check the downloads first.</translation>
    </message>
    <message>
        <source>The folder %1 could not be opened.</source>
        <translation>The folder %1 could not be opened.</translation>
    </message>
</context>
<context>
    <name>TransferMeter</name>
    <message>
        <source>%1 of %2 %3</source>
        <translation>%1 of %2 %3</translation>
    </message>
</context>
<context>
    <name>TransferPool</name>
    <message>
        <source>Nothing can be saved in %1: %2. All downloads wait until it is possible again.</source>
        <translation>Nothing can be saved in %1: %2. All downloads wait until it is possible again.</translation>
    </message>
    <message>
        <source>Nothing can be saved in %1: %2. Its downloads wait until it is possible again.</source>
        <translation>Nothing can be saved in %1: %2. Its downloads wait until it is possible again.</translation>
    </message>
</context>
<context>
    <name>TrayMenu</name>
    <message>
        <source>Skin</source>
        <translation>Skin</translation>
    </message>
    <message>
        <source>Language</source>
        <translation>Language</translation>
    </message>
    <message>
        <source>Default</source>
        <translation>Default</translation>
    </message>
    <message>
        <source>Dark</source>
        <translation>Dark</translation>
    </message>
</context>
<context>
    <name>VTGroup</name>
    <message>
        <source>Running</source>
        <translation>Running</translation>
    </message>
    <message>
        <source>Finished</source>
        <translation>Finished</translation>
    </message>
    <message>
        <source>All</source>
        <translation>All</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>Add</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Delete</translation>
    </message>
    <message>
        <source>Project</source>
        <translation>Project</translation>
    </message>
    <message>
        <source>My Render</source>
        <translation>My Render</translation>
    </message>
    <message>
        <source>Group</source>
        <translation>Group</translation>
    </message>
    <message>
        <source>Group name:</source>
        <translation>Group name:</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>Ok</source>
        <translation>Ok</translation>
    </message>
    <message>
        <source>Please input group name</source>
        <translation>Please input group name</translation>
    </message>
    <message>
        <source>The groups could not be saved. Changes may be lost when you quit or another user signs in.</source>
        <translation>The groups could not be saved. Changes may be lost when you quit or another user signs in.</translation>
    </message>
</context>
<context>
    <name>VTQsClientPrivate</name>
    <message>
        <source>wait</source>
        <translation>Waiting</translation>
    </message>
    <message>
        <source>analyze</source>
        <translation>Analyzing</translation>
    </message>
    <message>
        <source>compress</source>
        <translation>Packing</translation>
    </message>
    <message>
        <source>checksum</source>
        <translation>Checking</translation>
    </message>
    <message>
        <source>copysame</source>
        <translation>Comparing</translation>
    </message>
    <message>
        <source>upload</source>
        <translation>Uploading</translation>
    </message>
    <message>
        <source>uncompress</source>
        <translation>Unpacking</translation>
    </message>
    <message>
        <source>submit</source>
        <translation>Submitted</translation>
    </message>
    <message>
        <source>Waiting</source>
        <translation>Waiting</translation>
    </message>
    <message>
        <source>Downloading</source>
        <translation>Downloading</translation>
    </message>
    <message>
        <source>Finished</source>
        <translation>Finished</translation>
    </message>
    <message>
        <source>Failed</source>
        <translation>Failed</translation>
    </message>
    <message>
        <source>Stopped</source>
        <translation>Stopped</translation>
    </message>
    <message>
        <source>QuillStar Client</source>
        <translation>QuillStar Client</translation>
    </message>
    <message>
        <source>Ok</source>
        <translation>Ok</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>Balance</source>
        <translation>Balance</translation>
    </message>
    <message>
        <source>RMB</source>
        <translation>RMB</translation>
    </message>
    <message>
        <source>credits</source>
        <translation>credits</translation>
    </message>
    <message>
        <source>Service hotline</source>
        <translation>Service hotline</translation>
    </message>
    <message>
        <source>Version</source>
        <translation>Version</translation>
    </message>
    <message>
        <source>Charge</source>
        <translation>Charge</translation>
    </message>
    <message>
        <source>Select all</source>
        <translation>Select all</translation>
    </message>
    <message>
        <source>Recover</source>
        <translation>Recover</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Stop</translation>
    </message>
    <message>
        <source>Restart</source>
        <translation>Restart</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Delete</translation>
    </message>
    <message>
        <source>Full render</source>
        <translation>Full render</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>Search</translation>
    </message>
    <message>
        <source>Submit</source>
        <translation>Submit</translation>
    </message>
    <message>
        <source>Recharge</source>
        <translation>Recharge</translation>
    </message>
    <message>
        <source>Stop the checked jobs</source>
        <translation>Stop the checked rows</translation>
    </message>
    <message>
        <source>Restart the checked jobs</source>
        <translation>Restart the checked jobs</translation>
    </message>
    <message>
        <source>Delete the checked rows</source>
        <translation>Delete the checked rows</translation>
    </message>
    <message>
        <source>Render all frames of the checked jobs</source>
        <translation>Render all frames of the checked jobs</translation>
    </message>
    <message>
        <source>Search jobs</source>
        <translation>Search jobs</translation>
    </message>
    <message>
        <source>Submit a scene</source>
        <translation>Submit a scene</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>Quit</translation>
    </message>
    <message>
        <source>Minimize to the tray</source>
        <translation>Minimize to the tray</translation>
    </message>
    <message>
        <source>Restore</source>
        <translation>Restore</translation>
    </message>
    <message>
        <source>Maximize</source>
        <translation>Maximize</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Settings</translation>
    </message>
    <message>
        <source>Skin</source>
        <translation>Skin</translation>
    </message>
    <message>
        <source>Messages</source>
        <translation>Messages</translation>
    </message>
    <message>
        <source>Language</source>
        <translation>Language</translation>
    </message>
    <message>
        <source>Previous page</source>
        <translation>Previous page</translation>
    </message>
    <message>
        <source>Next page</source>
        <translation>Next page</translation>
    </message>
    <message>
        <source>Previous five pages</source>
        <translation>Previous five pages</translation>
    </message>
    <message>
        <source>Next five pages</source>
        <translation>Next five pages</translation>
    </message>
    <message>
        <source>My Render</source>
        <translation>My Render</translation>
    </message>
    <message>
        <source>Local Task</source>
        <translation>Local Task</translation>
    </message>
    <message>
        <source>Download</source>
        <translation>Download</translation>
    </message>
    <message>
        <source>Quillstar Client</source>
        <translation>Quillstar Client</translation>
    </message>
    <message>
        <source>Retry uploading?Failed to upload files:</source>
        <translation>Retry uploading? These files could not be uploaded:</translation>
    </message>
    <message>
        <source>Continue next step?
Below files are missing:
%1</source>
        <translation>Continue next step?
Below files are missing:
%1</translation>
    </message>
    <message>
        <source>Cost</source>
        <translation>Cost</translation>
    </message>
    <message>
        <source>Are you sure to quit?</source>
        <translation>Are you sure to quit?</translation>
    </message>
    <message>
        <source>Set parent</source>
        <translation>Set parent</translation>
    </message>
    <message>
        <source>Continue submit</source>
        <translation>Continue submit</translation>
    </message>
    <message>
        <source>Delete Tasks</source>
        <translation>Delete Tasks</translation>
    </message>
    <message>
        <source>Set argument</source>
        <translation>Set argument</translation>
    </message>
    <message>
        <source>Open file path</source>
        <translation>Open file path</translation>
    </message>
    <message>
        <source>Redownload</source>
        <translation>Redownload</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Source</source>
        <translation>Source</translation>
    </message>
    <message>
        <source>Dest</source>
        <translation>Destination</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>Progress</translation>
    </message>
    <message>
        <source>Status</source>
        <translation>Status</translation>
    </message>
    <message>
        <source>Start Time</source>
        <translation>Start Time</translation>
    </message>
    <message>
        <source>Unkown</source>
        <translation>Unknown</translation>
    </message>
    <message>
        <source>Are you sure to delete these jobs?</source>
        <translation>Are you sure to delete these jobs?</translation>
    </message>
    <message>
        <source>Delete jobs failed!</source>
        <translation>Delete jobs failed!</translation>
    </message>
    <message>
        <source>Stop jobs failed!</source>
        <translation>Stop jobs failed!</translation>
    </message>
    <message>
        <source>Recover jobs failed!</source>
        <translation>Recover jobs failed!</translation>
    </message>
    <message>
        <source>Restart jobs failed!</source>
        <translation>Restart jobs failed!</translation>
    </message>
    <message>
        <source>Full render jobs failed!</source>
        <translation>Full render jobs failed!</translation>
    </message>
    <message>
        <source>Amount Overdue!</source>
        <translation>Amount Overdue!</translation>
    </message>
    <message>
        <source>The checked items are already added to download list</source>
        <translation>The checked items are already added to download list</translation>
    </message>
    <message>
        <source>SceneFile</source>
        <translation>Scene file</translation>
    </message>
    <message>
        <source>Warn</source>
        <translation>Warning</translation>
    </message>
    <message>
        <source>Unknown</source>
        <translation>Unknown</translation>
    </message>
    <message>
        <source>fail</source>
        <translation> failed</translation>
    </message>
    <message>
        <source>Lacked of texture files:</source>
        <translation>Missing texture files:</translation>
    </message>
    <message>
        <source>embedded</source>
        <translation>embedded</translation>
    </message>
</context>
<context>
    <name>VTSearch</name>
    <message>
        <source>Waiting</source>
        <translation>Waiting</translation>
    </message>
    <message>
        <source>Running</source>
        <translation>Running</translation>
    </message>
    <message>
        <source>Stopped</source>
        <translation>Paused</translation>
    </message>
    <message>
        <source>Finished</source>
        <translation>Finished</translation>
    </message>
    <message>
        <source>Deleted</source>
        <translation>Deleted</translation>
    </message>
    <message>
        <source>To full render</source>
        <translation>To full render</translation>
    </message>
    <message>
        <source>Failed</source>
        <translation>Failed</translation>
    </message>
    <message>
        <source>Arrears</source>
        <translation>Arrears</translation>
    </message>
    <message>
        <source>Pause due to arrears</source>
        <translation>Paused due to arrears</translation>
    </message>
    <message>
        <source>Normal work</source>
        <translation>Normal work</translation>
    </message>
    <message>
        <source>Rendering work</source>
        <translation>Rendering work</translation>
    </message>
    <message>
        <source>Job Id</source>
        <translation>Job Id</translation>
    </message>
    <message>
        <source>Job Name</source>
        <translation>Job Name</translation>
    </message>
    <message>
        <source>Job Type</source>
        <translation>Job Type</translation>
    </message>
    <message>
        <source>Job Status</source>
        <translation>Job Status</translation>
    </message>
    <message>
        <source>Project Name</source>
        <translation>Project Name</translation>
    </message>
    <message>
        <source>Business Type</source>
        <translation>Business Type</translation>
    </message>
    <message>
        <source>Start Time</source>
        <translation>Start Time</translation>
    </message>
    <message>
        <source>End Time</source>
        <translation>End Time</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>Search</translation>
    </message>
    <message>
        <source>Reset</source>
        <translation>Reset</translation>
    </message>
</context>
<context>
    <name>VTSetArgument</name>
    <message>
        <source>Prerender</source>
        <translation>Prerender</translation>
    </message>
    <message>
        <source>Image size</source>
        <translation>Image size</translation>
    </message>
    <message>
        <source>Frame range</source>
        <translation>Frame range</translation>
    </message>
    <message>
        <source>Group</source>
        <translation>Group</translation>
    </message>
    <message>
        <source>Ok</source>
        <translation>Ok</translation>
    </message>
    <message>
        <source>Start frame must be less than end frame!</source>
        <translation>Start frame must be less than end frame!</translation>
    </message>
    <message>
        <source>Can not submit more than 1000 frames</source>
        <translation>Can not submit more than 1000 frames</translation>
    </message>
</context>
<context>
    <name>VTSetParent</name>
    <message>
        <source>Ok</source>
        <translation>Ok</translation>
    </message>
    <message>
        <source>The dependency could not be saved. The jobs will be resumed only while the client is running.</source>
        <translation>The dependency could not be saved. The jobs will be resumed only while the client is running.</translation>
    </message>
</context>
</TS>
