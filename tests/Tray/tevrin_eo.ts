<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="eo" sourcelanguage="zh_CN">
<context>
    <name>Panel</name>
    <message>
        <source>退出</source>
        <translation>Fini</translation>
    </message>
</context>
</TS>
