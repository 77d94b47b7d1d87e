<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en">
<context>
    <name>ui</name>
    <message><source>sentenceEndings</source><translation>.|!|?</translation></message>
    <message><source>sample_original_name</source><translation>Sample Name.jpg</translation></message>
    <message><source>TheStripList</source><translation>The |A |An </translation></message>
    <message><source>bytes</source><translation>bytes</translation></message>
    <message><source>KB</source><translation>KB</translation></message>
    <message><source>MB</source><translation>MB</translation></message>
    <message><source>GB</source><translation>GB</translation></message>
    <message><source>TB</source><translation>TB</translation></message>
</context>
</TS>
