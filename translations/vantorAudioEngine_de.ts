<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>AudioPlayer</name>
    <message>
        <source>The connection to the sound server was lost for good. Start the program again to hear sound.</source>
        <translation>Die Verbindung zum Soundserver ist endgültig verloren. Starten Sie das Programm neu, um wieder etwas zu hören.</translation>
    </message>
</context>
<context>
    <name>AudioPlayerActions</name>
    <message>
        <source>Play or pause</source>
        <translation>Wiedergabe oder Pause</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Stopp</translation>
    </message>
    <message>
        <source>One second back</source>
        <translation>Eine Sekunde zurück</translation>
    </message>
    <message>
        <source>One second forward</source>
        <translation>Eine Sekunde vor</translation>
    </message>
    <message>
        <source>Five seconds back</source>
        <translation>Fünf Sekunden zurück</translation>
    </message>
    <message>
        <source>Five seconds forward</source>
        <translation>Fünf Sekunden vor</translation>
    </message>
    <message>
        <source>Go to the start</source>
        <translation>Zum Anfang</translation>
    </message>
    <message>
        <source>Go to the end</source>
        <translation>Zum Ende</translation>
    </message>
    <message>
        <source>Loop</source>
        <translation>Schleife</translation>
    </message>
    <message>
        <source>Mute</source>
        <translation>Stummschalten</translation>
    </message>
    <message>
        <source>Zoom in</source>
        <translation>Vergrößern</translation>
    </message>
    <message>
        <source>Zoom out</source>
        <translation>Verkleinern</translation>
    </message>
    <message>
        <source>Show all</source>
        <translation>Alles anzeigen</translation>
    </message>
    <message>
        <source>Zoom to the selection</source>
        <translation>Auf die Auswahl zoomen</translation>
    </message>
    <message>
        <source>Start the selection at the position</source>
        <translation>Auswahl an der Position beginnen</translation>
    </message>
    <message>
        <source>End the selection at the position</source>
        <translation>Auswahl an der Position beenden</translation>
    </message>
    <message>
        <source>Move the start back</source>
        <translation>Auswahlanfang nach links verschieben</translation>
    </message>
    <message>
        <source>Move the start forward</source>
        <translation>Auswahlanfang nach rechts verschieben</translation>
    </message>
    <message>
        <source>Move the end back</source>
        <translation>Auswahlende nach links verschieben</translation>
    </message>
    <message>
        <source>Move the end forward</source>
        <translation>Auswahlende nach rechts verschieben</translation>
    </message>
    <message>
        <source>Clear the selection</source>
        <translation>Auswahl aufheben</translation>
    </message>
</context>
<context>
    <name>TimeScale</name>
    <message>
        <source>hr</source>
        <translation>h</translation>
    </message>
    <message>
        <source>min</source>
        <translation>min</translation>
    </message>
    <message>
        <source>sec</source>
        <translation>s</translation>
    </message>
    <message>
        <source>msec</source>
        <translation>ms</translation>
    </message>
</context>
<context>
    <name>WavFile</name>
    <message>
        <source>The file holds no audio of a kind that can be read.</source>
        <translation>Die Datei enthält kein Audio, das gelesen werden kann.</translation>
    </message>
    <message>
        <source>The file could not be opened.</source>
        <translation>Die Datei konnte nicht geöffnet werden.</translation>
    </message>
    <message>
        <source>The file ends in the middle of its header.</source>
        <translation>Die Datei endet mitten in ihrem Kopf.</translation>
    </message>
    <message>
        <source>The new file could not be written.</source>
        <translation>Die neue Datei konnte nicht geschrieben werden.</translation>
    </message>
    <message>
        <source>The selection could not be saved.</source>
        <translation>Die Auswahl konnte nicht gespeichert werden.</translation>
    </message>
    <message>
        <source>The channel could not be written to a file of its own.</source>
        <translation>Der Kanal konnte nicht in eine eigene Datei geschrieben werden.</translation>
    </message>
    <message>
        <source>The file has more than two channels, or none.</source>
        <translation>Die Datei hat mehr als zwei Kanäle oder gar keinen.</translation>
    </message>
    <message>
        <source>Not a regular file</source>
        <translation>Keine gewöhnliche Datei</translation>
    </message>
    <message>
        <source>Another program has changed the file</source>
        <translation>Ein anderes Programm hat die Datei geändert</translation>
    </message>
    <message>
        <source>Updating...</source>
        <translation>Wird aktualisiert...</translation>
    </message>
    <message>
        <source>Creating snippet...</source>
        <translation>Ausschnitt wird erstellt...</translation>
    </message>
    <message>
        <source>Updated</source>
        <translation>Aktualisiert</translation>
    </message>
</context>
<context>
    <name>vantoraudio::AudioEngine::AudioFileInfo</name>
    <message>
        <source>There is no file “%1”.</source>
        <translation>Es gibt keine Datei „%1“.</translation>
    </message>
    <message>
        <source>You have no permission to read “%1”.</source>
        <translation>Sie dürfen „%1“ nicht lesen.</translation>
    </message>
    <message>
        <source>“%1” is not a file.</source>
        <translation>„%1“ ist keine Datei.</translation>
    </message>
    <message>
        <source>“%1” holds no audio that can be decoded.</source>
        <translation>„%1“ enthält kein Audio, das dekodiert werden kann.</translation>
    </message>
    <message>
        <source>“%1” is damaged: none of its audio can be decoded.</source>
        <translation>„%1“ ist beschädigt: Nichts von dem Audio kann dekodiert werden.</translation>
    </message>
    <message>
        <source>“%1” could not be read to its end. Is the disk still there?</source>
        <translation>„%1“ konnte nicht bis zum Ende gelesen werden. Ist der Datenträger noch da?</translation>
    </message>
    <message>
        <source>“%1” is protected against copying.</source>
        <translation>„%1“ ist gegen Kopieren geschützt.</translation>
    </message>
    <message>
        <source>“%1” is too long for a WAV file of 4 GiB.</source>
        <translation>„%1“ ist zu lang für eine WAV-Datei von 4 GiB.</translation>
    </message>
    <message>
        <source>The disk has too little space for the audio of “%1”.</source>
        <translation>Auf dem Datenträger ist zu wenig Platz für das Audio von „%1“.</translation>
    </message>
    <message>
        <source>The audio of “%1” cannot be given that sample rate.</source>
        <translation>Das Audio von „%1“ kann diese Abtastrate nicht bekommen.</translation>
    </message>
    <message>
        <source>The audio of “%1” may not be written to that folder.</source>
        <translation>Das Audio von „%1“ darf nicht in diesen Ordner geschrieben werden.</translation>
    </message>
    <message>
        <source>The audio of “%1” could not be written.</source>
        <translation>Das Audio von „%1“ konnte nicht geschrieben werden.</translation>
    </message>
    <message>
        <source>Loading “%1” was cancelled.</source>
        <translation>Das Laden von „%1“ wurde abgebrochen.</translation>
    </message>
</context>
<context>
    <name>vantoraudio::vantorAudioEngine::UI::AudioPlayerWidget</name>
    <message>
        <source>Mono</source>
        <translation>Mono</translation>
    </message>
    <message>
        <source>Channel L + R</source>
        <translation>Kanal L + R</translation>
    </message>
    <message>
        <source>Channel L</source>
        <translation>Kanal L</translation>
    </message>
    <message>
        <source>Channel R</source>
        <translation>Kanal R</translation>
    </message>
    <message>
        <source>Current position:</source>
        <translation>Aktuelle Position:</translation>
    </message>
    <message>
        <source>Total:</source>
        <translation>Gesamt:</translation>
    </message>
    <message>
        <source>Audio file</source>
        <translation>Audiodatei</translation>
    </message>
    <message>
        <source>Load audio file</source>
        <translation>Audiodatei laden</translation>
    </message>
    <message>
        <source>Use channel</source>
        <translation>Kanal verwenden</translation>
    </message>
    <message>
        <source>Selection</source>
        <translation>Auswahl</translation>
    </message>
    <message>
        <source>Start:</source>
        <translation>Anfang:</translation>
    </message>
    <message>
        <source>End:</source>
        <translation>Ende:</translation>
    </message>
    <message>
        <source>Use CTRL / CMD for coarse decrements</source>
        <translation>STRG / CMD für Verringern in großen Schritten</translation>
    </message>
    <message>
        <source>Use CTRL / CMD for coarse increments</source>
        <translation>STRG / CMD für Erhöhen in großen Schritten</translation>
    </message>
    <message>
        <source>Waveform</source>
        <translation>Wellenform</translation>
    </message>
    <message>
        <source>Mute</source>
        <translation>Stummschalten</translation>
    </message>
    <message>
        <source>Volume</source>
        <translation>Lautstärke</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Stopp</translation>
    </message>
    <message>
        <source>Play</source>
        <translation>Wiedergabe</translation>
    </message>
    <message>
        <source>Loop</source>
        <translation>Schleife</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>Current position</source>
        <translation>Aktuelle Position</translation>
    </message>
    <message>
        <source>Total duration</source>
        <translation>Gesamtdauer</translation>
    </message>
    <message>
        <source>Channel</source>
        <translation>Kanal</translation>
    </message>
    <message>
        <source>Start of the selection</source>
        <translation>Anfang der Auswahl</translation>
    </message>
    <message>
        <source>Start earlier</source>
        <translation>Früher beginnen</translation>
    </message>
    <message>
        <source>Start later</source>
        <translation>Später beginnen</translation>
    </message>
    <message>
        <source>End of the selection</source>
        <translation>Ende der Auswahl</translation>
    </message>
    <message>
        <source>End earlier</source>
        <translation>Früher enden</translation>
    </message>
    <message>
        <source>End later</source>
        <translation>Später enden</translation>
    </message>
    <message>
        <source>Loading...</source>
        <translation>Wird geladen...</translation>
    </message>
    <message>
        <source>Audio files</source>
        <translation>Audiodateien</translation>
    </message>
    <message>
        <source>All files</source>
        <translation>Alle Dateien</translation>
    </message>
</context>
<context>
    <name>vantoraudio::vantorAudioEngine::UI::BGFXWaveformWidget</name>
    <message>
        <source>%1 of %2</source>
        <translation>%1 von %2</translation>
    </message>
    <message>
        <source>Nothing is selected.</source>
        <translation>Nichts ist ausgewählt.</translation>
    </message>
    <message>
        <source>Selected from %1 to %2.</source>
        <translation>Ausgewählt von %1 bis %2.</translation>
    </message>
</context>
</TS>
