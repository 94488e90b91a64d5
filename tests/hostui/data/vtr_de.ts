<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>AuthClientForm</name>
    <message>
        <source>User name</source>
        <translation>Benutzername</translation>
    </message>
</context>
<context>
    <name>SignInWindow</name>
    <message>
        <source>Sign in</source>
        <translation>Anmelden</translation>
    </message>
</context>
<context>
    <name>TrayMenu</name>
    <message>
        <source>Language</source>
        <translation>Sprache</translation>
    </message>
</context>
</TS>
