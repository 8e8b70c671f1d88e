<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>Appearance</name>
    <message>
        <source>Background</source>
        <translation>Hintergrund</translation>
    </message>
    <message>
        <source>Waveform</source>
        <translation>Wellenform</translation>
    </message>
    <message>
        <source>Selection</source>
        <translation>Auswahl</translation>
    </message>
    <message>
        <source>Position</source>
        <translation>Position</translation>
    </message>
    <message>
        <source>Grid</source>
        <translation>Raster</translation>
    </message>
    <message>
        <source>Frame</source>
        <translation>Rahmen</translation>
    </message>
    <message>
        <source>Scale</source>
        <translation>Skala</translation>
    </message>
    <message>
        <source>As the system</source>
        <translation>Wie das System</translation>
    </message>
    <message>
        <source>Light</source>
        <translation>Hell</translation>
    </message>
    <message>
        <source>Dark</source>
        <translation>Dunkel</translation>
    </message>
    <message>
        <source>High contrast</source>
        <translation>Hoher Kontrast</translation>
    </message>
</context>
<context>
    <name>DeviceMenu</name>
    <message>
        <source>&amp;Output device</source>
        <translation>Ausgabe&amp;gerät</translation>
    </message>
    <message>
        <source>No output device</source>
        <translation>Kein Ausgabegerät</translation>
    </message>
    <message>
        <source>%1 (%2)</source>
        <extracomment>%1: name of an output device, %2: its number among the devices of that name</extracomment>
        <translation>%1 (%2)</translation>
    </message>
</context>
<context>
    <name>DragHandle</name>
    <message>
        <source>Drag the selection from here into another program</source>
        <translation>Die Auswahl von hier in ein anderes Programm ziehen</translation>
    </message>
    <message>
        <source>Drag selection</source>
        <translation>Auswahl herausziehen</translation>
    </message>
    <message>
        <source>%1 selection</source>
        <translation>%1 Auswahl</translation>
    </message>
</context>
<context>
    <name>FailureBar</name>
    <message>
        <source>Hide this message</source>
        <translation>Diese Meldung ausblenden</translation>
    </message>
</context>
<context>
    <name>Failures</name>
    <message>
        <source>“%1” cannot be written: is there room, and may you write there?</source>
        <translation>„%1“ kann nicht geschrieben werden: Ist dort Platz, und dürfen Sie dort schreiben?</translation>
    </message>
    <message>
        <source>The channel of “%1” cannot be prepared: is there room, and is the file still there?</source>
        <translation>Der Kanal von „%1“ kann nicht vorbereitet werden: Ist Platz da, und ist die Datei noch da?</translation>
    </message>
    <message>
        <source>“%1” is there already: please choose another name.</source>
        <translation>„%1“ gibt es schon: Bitte wählen Sie einen anderen Namen.</translation>
    </message>
    <message>
        <source>“%1” is there already. Do you want to replace it?</source>
        <translation>„%1“ gibt es schon. Möchten Sie die Datei ersetzen?</translation>
    </message>
    <message>
        <source>“%1” cannot be played: %2</source>
        <translation>„%1“ kann nicht abgespielt werden: %2</translation>
    </message>
    <message>
        <source>“%1” is the file that is open. If you replace it, only what you export is left of it. Do you want that?</source>
        <translation>„%1“ ist die geöffnete Datei. Wenn Sie sie ersetzen, bleibt von ihr nur übrig, was Sie exportieren. Möchten Sie das?</translation>
    </message>
</context>
<context>
    <name>FileExport</name>
    <message>
        <source>Exporting</source>
        <translation>Wird exportiert</translation>
    </message>
</context>
<context>
    <name>FileInformation</name>
    <message>
        <source>Information</source>
        <translation>Informationen</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Folder</source>
        <translation>Ordner</translation>
    </message>
    <message>
        <source>Title</source>
        <translation>Titel</translation>
    </message>
    <message>
        <source>Artist</source>
        <translation>Interpret</translation>
    </message>
    <message>
        <source>Format</source>
        <translation>Format</translation>
    </message>
    <message>
        <source>Coding</source>
        <translation>Kodierung</translation>
    </message>
    <message>
        <source>Sample rate</source>
        <translation>Abtastrate</translation>
    </message>
    <message>
        <source>%1 Hz</source>
        <translation>%1 Hz</translation>
    </message>
    <message>
        <source>Channels</source>
        <translation>Kanäle</translation>
    </message>
    <message>
        <source>Bits of a sample</source>
        <translation>Bits pro Abtastwert</translation>
    </message>
    <message>
        <source>Length</source>
        <translation>Länge</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Größe</translation>
    </message>
    <message>
        <source>%1:</source>
        <translation>%1:</translation>
    </message>
    <message>
        <source>Note</source>
        <translation>Hinweis</translation>
    </message>
    <message>
        <source>The file cannot be read now. This is what was loaded of it.</source>
        <translation>Die Datei ist jetzt nicht lesbar. Dies ist, was von ihr geladen wurde.</translation>
    </message>
</context>
<context>
    <name>FileList</name>
    <message>
        <source>Files</source>
        <translation>Dateien</translation>
    </message>
    <message>
        <source>&amp;Next file</source>
        <translation>&amp;Nächste Datei</translation>
    </message>
    <message>
        <source>&amp;Previous file</source>
        <translation>&amp;Vorige Datei</translation>
    </message>
    <message>
        <source>&amp;Remove from the list</source>
        <translation>Aus der Liste &amp;entfernen</translation>
    </message>
    <message>
        <source>Loaded</source>
        <translation>Geladen</translation>
    </message>
</context>
<context>
    <name>GoTo</name>
    <message>
        <source>Go to</source>
        <translation>Gehe zu</translation>
    </message>
    <message>
        <source>&amp;Time:</source>
        <translation>&amp;Zeit:</translation>
    </message>
    <message>
        <source>Such as 7.5, 1:30 or 1:02:03.250</source>
        <translation>Etwa 7,5, 1:30 oder 1:02:03,250</translation>
    </message>
</context>
<context>
    <name>LevelMeter</name>
    <message>
        <source>%1 dB</source>
        <translation>%1 dB</translation>
    </message>
    <message>
        <source>silent</source>
        <translation>still</translation>
    </message>
    <message>
        <source>Level</source>
        <translation>Pegel</translation>
    </message>
    <message>
        <source>Level of what is played, in decibels of full scale</source>
        <translation>Pegel der Wiedergabe in Dezibel, bezogen auf Vollaussteuerung</translation>
    </message>
</context>
<context>
    <name>PlayerWindow</name>
    <message>
        <source>Wheel: scroll   Ctrl + wheel: zoom   Double click: whole file   Drag: select   Space: play and pause   F1: all keys</source>
        <translation>Rad: blättern   Strg + Rad: zoomen   Doppelklick: ganze Datei   Ziehen: auswählen   Leertaste: Wiedergabe und Pause   F1: alle Tasten</translation>
    </message>
    <message>
        <source>Saved “%1”.</source>
        <translation>„%1“ wurde gespeichert.</translation>
    </message>
    <message>
        <source>Cancelled.</source>
        <translation>Abgebrochen.</translation>
    </message>
    <message>
        <source>Player</source>
        <translation>Player</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Öffnen</translation>
    </message>
    <message>
        <source>44.1 kHz, stereo, 16 bit</source>
        <translation>44,1 kHz, Stereo, 16 Bit</translation>
    </message>
    <message>
        <source>48 kHz, stereo, 16 bit</source>
        <translation>48 kHz, Stereo, 16 Bit</translation>
    </message>
    <message>
        <source>48 kHz, stereo, 32 bit</source>
        <translation>48 kHz, Stereo, 32 Bit</translation>
    </message>
    <message>
        <source>96 kHz, stereo, float</source>
        <translation>96 kHz, Stereo, Fließkomma</translation>
    </message>
    <message>
        <source>16 kHz, mono, 16 bit</source>
        <translation>16 kHz, Mono, 16 Bit</translation>
    </message>
    <message>
        <source>&amp;Export</source>
        <translation>&amp;Exportieren</translation>
    </message>
    <message>
        <source>&amp;Selection…</source>
        <translation>&amp;Auswahl…</translation>
    </message>
    <message>
        <source>selection</source>
        <translation>Auswahl</translation>
    </message>
    <message>
        <source>&amp;Left channel…</source>
        <translation>&amp;Linker Kanal…</translation>
    </message>
    <message>
        <source>left</source>
        <translation>links</translation>
    </message>
    <message>
        <source>&amp;Right channel…</source>
        <translation>&amp;Rechter Kanal…</translation>
    </message>
    <message>
        <source>right</source>
        <translation>rechts</translation>
    </message>
    <message>
        <source>&amp;Whole file as</source>
        <translation>&amp;Ganze Datei als</translation>
    </message>
    <message>
        <source>converted</source>
        <translation>konvertiert</translation>
    </message>
    <message>
        <source>Export</source>
        <translation>Exportieren</translation>
    </message>
    <message>
        <source>WAV files (*.wav)</source>
        <translation>WAV-Dateien (*.wav)</translation>
    </message>
    <message>
        <source>Selected: %1 s</source>
        <translation>Ausgewählt: %1 s</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <source>&amp;Keys…</source>
        <translation>&amp;Tasten…</translation>
    </message>
    <message>
        <source>&amp;About…</source>
        <translation>&amp;Über…</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>&amp;Open…</source>
        <translation>Ö&amp;ffnen…</translation>
    </message>
    <message>
        <source>&amp;Information…</source>
        <translation>&amp;Informationen…</translation>
    </message>
    <message>
        <source>&amp;Settings…</source>
        <translation>Ein&amp;stellungen…</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>&amp;Undo</source>
        <translation>&amp;Rückgängig</translation>
    </message>
    <message>
        <source>&amp;Redo</source>
        <translation>&amp;Wiederholen</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Bearbeiten</translation>
    </message>
    <message>
        <source>&amp;Playback</source>
        <translation>&amp;Wiedergabe</translation>
    </message>
    <message>
        <source>&amp;Go to…</source>
        <translation>&amp;Gehe zu…</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>&amp;Ansicht</translation>
    </message>
    <message>
        <source>&amp;Selection</source>
        <translation>A&amp;uswahl</translation>
    </message>
    <message>
        <source>About</source>
        <translation>Über</translation>
    </message>
    <message>
        <source>The waveform is drawn by %1.</source>
        <translation>Die Wellenform wird von %1 gezeichnet.</translation>
    </message>
    <message>
        <source>&amp;Follow the position</source>
        <translation>Der Position &amp;folgen</translation>
    </message>
    <message>
        <source>Tools</source>
        <translation>Werkzeuge</translation>
    </message>
    <message>
        <source>Speed</source>
        <translation>Geschwindigkeit</translation>
    </message>
    <message>
        <source>Nothing was exported: another file was loaded meanwhile.</source>
        <translation>Nichts wurde exportiert: Inzwischen wurde eine andere Datei geladen.</translation>
    </message>
    <message>
        <source>This program runs with Qt %1.</source>
        <translation>Dieses Programm läuft mit Qt %1.</translation>
    </message>
    <message>
        <source>Select &amp;all</source>
        <translation>&amp;Alles auswählen</translation>
    </message>
</context>
<context>
    <name>PointerLabel</name>
    <message>
        <source>%1: %2 dB</source>
        <translation>%1: %2 dB</translation>
    </message>
</context>
<context>
    <name>RecentFiles</name>
    <message>
        <source>Open &amp;recent</source>
        <translation>&amp;Zuletzt geöffnet</translation>
    </message>
    <message>
        <source>No files</source>
        <translation>Keine Dateien</translation>
    </message>
    <message>
        <source>&amp;Clear list</source>
        <translation>Liste &amp;leeren</translation>
    </message>
</context>
<context>
    <name>ScreenshotJob</name>
    <message>
        <source>No picture was saved: the waveform was not complete in time.</source>
        <translation>Es wurde kein Bild gespeichert: Die Wellenform war nicht rechtzeitig vollständig.</translation>
    </message>
</context>
<context>
    <name>SelectionHistory</name>
    <message>
        <source>selection</source>
        <translation>(Auswahl)</translation>
    </message>
</context>
<context>
    <name>SettingsDialog</name>
    <message>
        <source>Settings</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>Theme</source>
        <translation>Erscheinungsbild</translation>
    </message>
    <message>
        <source>Ctrl and the wheel toward you zooms out</source>
        <translation>Strg und das Rad zu Ihnen hin verkleinert</translation>
    </message>
    <message>
        <source>Notches of the wheel for twice the view</source>
        <translation>Rasten des Mausrads für die doppelte Ansicht</translation>
    </message>
</context>
<context>
    <name>ShortcutSheet</name>
    <message>
        <source>Keys</source>
        <translation>Tasten</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>Mouse in the waveform: drag to select, Shift and click to extend the selection, wheel to scroll, Ctrl and wheel to zoom, double click for the whole file.</source>
        <translation>Maus in der Wellenform: Ziehen wählt aus, Umschalt und Klick erweitert die Auswahl, das Rad blättert, Strg und Rad zoomt, ein Doppelklick zeigt die ganze Datei.</translation>
    </message>
</context>
<context>
    <name>SpeedMenu</name>
    <message>
        <source>S&amp;peed</source>
        <translation>Ge&amp;schwindigkeit</translation>
    </message>
    <message>
        <source>&amp;Slower</source>
        <translation>&amp;Langsamer</translation>
    </message>
    <message>
        <source>&amp;Faster</source>
        <translation>&amp;Schneller</translation>
    </message>
    <message>
        <source>&amp;Normal speed</source>
        <translation>&amp;Normale Geschwindigkeit</translation>
    </message>
</context>
<context>
    <name>TaskProgress</name>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
</context>
<context>
    <name>ThemeMenu</name>
    <message>
        <source>&amp;Theme</source>
        <translation>&amp;Design</translation>
    </message>
</context>
<context>
    <name>ZoomBar</name>
    <message>
        <source>Zoom</source>
        <translation>Zoom</translation>
    </message>
</context>
<context>
    <name>main</name>
    <message>
        <source>Not a range of seconds such as 1.5-3: %1</source>
        <translation>Kein Bereich in Sekunden wie 1.5-3: %1</translation>
    </message>
    <message>
        <source>Shows and plays an audio file.</source>
        <translation>Zeigt eine Audiodatei und spielt sie ab.</translation>
    </message>
    <message>
        <source>Start playing at once.</source>
        <translation>Die Wiedergabe sofort starten.</translation>
    </message>
    <message>
        <source>Show this range of seconds.</source>
        <translation>Diesen Bereich in Sekunden anzeigen.</translation>
    </message>
    <message>
        <source>Select this range of seconds.</source>
        <translation>Diesen Bereich in Sekunden auswählen.</translation>
    </message>
    <message>
        <source>Save a picture of the window once it is complete, and quit.</source>
        <translation>Ein Bild des Fensters speichern, sobald es vollständig ist, und beenden.</translation>
    </message>
    <message>
        <source>The files to open.</source>
        <translation>Die Dateien, die geöffnet werden.</translation>
    </message>
</context>
</TS>
