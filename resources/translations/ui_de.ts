<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de">
<context>
    <name>ui</name>
    <message><source>«YYYY-MM-DD»</source><translation>«JJJJ-MM-TT»</translation></message>
    <message><source>«YY-MM-DD»</source><translation>«JJ-MM-TT»</translation></message>
    <message><source>«MM-DD-YYYY»</source><translation>«MM-TT-JJJJ»</translation></message>
    <message><source>«MM-DD-YY»</source><translation>«MM-TT-JJ»</translation></message>
    <message><source>«MM-DD»</source><translation>«MM-TT»</translation></message>
    <message><source>«YYYY-DD-MM»</source><translation>«JJJJ-TT-MM»</translation></message>
    <message><source>«YY-DD-MM»</source><translation>«JJ-TT-MM»</translation></message>
    <message><source>«DD-MM-YYYY»</source><translation>«TT-MM-JJJJ»</translation></message>
    <message><source>«DD-MM-YY»</source><translation>«TT-MM-JJ»</translation></message>
    <message><source>«DD-MM»</source><translation>«TT-MM»</translation></message>
    <message><source>B</source><translation>Byte</translation></message>
    <message><source>KB</source><translation>KB</translation></message>
    <message><source>MB</source><translation>MB</translation></message>
    <message><source>GB</source><translation>GB</translation></message>
    <message><source>Couldn't find unit designation</source><translation>Keine Maßeinheit gefunden</translation></message>
    <message><source>Counter</source><translation>Zähler</translation></message>
    <message><source>Folder name</source><translation>Ordnername</translation></message>
    <message><source>Date</source><translation>Datum</translation></message>
    <message><source>Date in a format of your own…</source><translation>Datum in eigenem Format…</translation></message>
    <message><source>sample_original_name</source><translation>Beispielname.jpg</translation></message>
</context>
<context>
    <name>Localizable</name>
    <message><source>Today</source><translation>Heute</translation></message>
    <message><source>Yesterday</source><translation>Gestern</translation></message>
    <message><source>Tomorrow</source><translation>Morgen</translation></message>
</context>
</TS>
