<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr_FR">
<context>
    <name>Appearance</name>
    <message>
        <source>Background</source>
        <translation>Arrière-plan</translation>
    </message>
    <message>
        <source>Waveform</source>
        <translation>Forme d’onde</translation>
    </message>
    <message>
        <source>Selection</source>
        <translation>Sélection</translation>
    </message>
    <message>
        <source>Position</source>
        <translation>Position</translation>
    </message>
    <message>
        <source>Grid</source>
        <translation>Grille</translation>
    </message>
    <message>
        <source>Frame</source>
        <translation>Cadre</translation>
    </message>
    <message>
        <source>Scale</source>
        <translation>Échelle</translation>
    </message>
    <message>
        <source>As the system</source>
        <translation>Comme le système</translation>
    </message>
    <message>
        <source>Light</source>
        <translation>Clair</translation>
    </message>
    <message>
        <source>Dark</source>
        <translation>Sombre</translation>
    </message>
    <message>
        <source>High contrast</source>
        <translation>Contraste élevé</translation>
    </message>
</context>
<context>
    <name>DeviceMenu</name>
    <message>
        <source>&amp;Output device</source>
        <translation>&amp;Périphérique de sortie</translation>
    </message>
    <message>
        <source>No output device</source>
        <translation>Aucun périphérique de sortie</translation>
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
        <translation>Faites glisser la sélection d’ici vers un autre programme</translation>
    </message>
    <message>
        <source>Drag selection</source>
        <translation>Glisser la sélection</translation>
    </message>
    <message>
        <source>%1 selection</source>
        <translation>%1 sélection</translation>
    </message>
</context>
<context>
    <name>FailureBar</name>
    <message>
        <source>Hide this message</source>
        <translation>Masquer ce message</translation>
    </message>
</context>
<context>
    <name>Failures</name>
    <message>
        <source>“%1” cannot be written: is there room, and may you write there?</source>
        <translation>« %1 » ne peut pas être écrit : y a-t-il de la place, et avez-vous le droit d’y écrire ?</translation>
    </message>
    <message>
        <source>The channel of “%1” cannot be prepared: is there room, and is the file still there?</source>
        <translation>Le canal de « %1 » ne peut pas être préparé : y a-t-il de la place, et le fichier est-il toujours là ?</translation>
    </message>
    <message>
        <source>“%1” is there already: please choose another name.</source>
        <translation>« %1 » existe déjà : veuillez choisir un autre nom.</translation>
    </message>
    <message>
        <source>“%1” is there already. Do you want to replace it?</source>
        <translation>« %1 » existe déjà. Voulez-vous le remplacer ?</translation>
    </message>
    <message>
        <source>“%1” cannot be played: %2</source>
        <translation>Impossible de lire « %1 » : %2</translation>
    </message>
    <message>
        <source>“%1” is the file that is open. If you replace it, only what you export is left of it. Do you want that?</source>
        <translation>« %1 » est le fichier ouvert. Si vous le remplacez, il n’en restera que ce que vous exportez. Voulez-vous continuer ?</translation>
    </message>
</context>
<context>
    <name>FileExport</name>
    <message>
        <source>Exporting</source>
        <translation>Exportation</translation>
    </message>
</context>
<context>
    <name>FileInformation</name>
    <message>
        <source>Information</source>
        <translation>Informations</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Nom</translation>
    </message>
    <message>
        <source>Folder</source>
        <translation>Dossier</translation>
    </message>
    <message>
        <source>Title</source>
        <translation>Titre</translation>
    </message>
    <message>
        <source>Artist</source>
        <translation>Artiste</translation>
    </message>
    <message>
        <source>Format</source>
        <translation>Format</translation>
    </message>
    <message>
        <source>Coding</source>
        <translation>Codage</translation>
    </message>
    <message>
        <source>Sample rate</source>
        <translation>Fréquence d’échantillonnage</translation>
    </message>
    <message>
        <source>%1 Hz</source>
        <translation>%1 Hz</translation>
    </message>
    <message>
        <source>Channels</source>
        <translation>Canaux</translation>
    </message>
    <message>
        <source>Bits of a sample</source>
        <translation>Bits par échantillon</translation>
    </message>
    <message>
        <source>Length</source>
        <translation>Durée</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Taille</translation>
    </message>
    <message>
        <source>%1:</source>
        <translation>%1 :</translation>
    </message>
    <message>
        <source>Note</source>
        <translation>Remarque</translation>
    </message>
    <message>
        <source>The file cannot be read now. This is what was loaded of it.</source>
        <translation>Le fichier est illisible pour le moment. Voici ce qui en a été chargé.</translation>
    </message>
</context>
<context>
    <name>FileList</name>
    <message>
        <source>Files</source>
        <translation>Fichiers</translation>
    </message>
    <message>
        <source>&amp;Next file</source>
        <translation>Fichier &amp;suivant</translation>
    </message>
    <message>
        <source>&amp;Previous file</source>
        <translation>Fichier précé&amp;dent</translation>
    </message>
    <message>
        <source>&amp;Remove from the list</source>
        <translation>&amp;Retirer de la liste</translation>
    </message>
    <message>
        <source>Loaded</source>
        <translation>Chargé</translation>
    </message>
</context>
<context>
    <name>GoTo</name>
    <message>
        <source>Go to</source>
        <translation>Aller à</translation>
    </message>
    <message>
        <source>&amp;Time:</source>
        <translation>&amp;Temps :</translation>
    </message>
    <message>
        <source>Such as 7.5, 1:30 or 1:02:03.250</source>
        <translation>Par exemple 7,5, 1:30 ou 1:02:03,250</translation>
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
        <translation>silence</translation>
    </message>
    <message>
        <source>Level</source>
        <translation>Niveau</translation>
    </message>
    <message>
        <source>Level of what is played, in decibels of full scale</source>
        <translation>Niveau de ce qui est lu, en décibels par rapport à la pleine échelle</translation>
    </message>
</context>
<context>
    <name>PlayerWindow</name>
    <message>
        <source>Wheel: scroll   Ctrl + wheel: zoom   Double click: whole file   Drag: select   Space: play and pause   F1: all keys</source>
        <translation>Molette : défiler   Ctrl + molette : zoom   Double-clic : fichier entier   Glisser : sélectionner   Espace : lecture et pause   F1 : toutes les touches</translation>
    </message>
    <message>
        <source>Saved “%1”.</source>
        <translation>« %1 » enregistré.</translation>
    </message>
    <message>
        <source>Cancelled.</source>
        <translation>Annulé.</translation>
    </message>
    <message>
        <source>Player</source>
        <translation>Lecteur</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Ouvrir</translation>
    </message>
    <message>
        <source>44.1 kHz, stereo, 16 bit</source>
        <translation>44,1 kHz, stéréo, 16 bits</translation>
    </message>
    <message>
        <source>48 kHz, stereo, 16 bit</source>
        <translation>48 kHz, stéréo, 16 bits</translation>
    </message>
    <message>
        <source>48 kHz, stereo, 32 bit</source>
        <translation>48 kHz, stéréo, 32 bits</translation>
    </message>
    <message>
        <source>96 kHz, stereo, float</source>
        <translation>96 kHz, stéréo, virgule flottante</translation>
    </message>
    <message>
        <source>16 kHz, mono, 16 bit</source>
        <translation>16 kHz, mono, 16 bits</translation>
    </message>
    <message>
        <source>&amp;Export</source>
        <translation>&amp;Exporter</translation>
    </message>
    <message>
        <source>&amp;Selection…</source>
        <translation>&amp;Sélection…</translation>
    </message>
    <message>
        <source>selection</source>
        <translation>sélection</translation>
    </message>
    <message>
        <source>&amp;Left channel…</source>
        <translation>Canal &amp;gauche…</translation>
    </message>
    <message>
        <source>left</source>
        <translation>gauche</translation>
    </message>
    <message>
        <source>&amp;Right channel…</source>
        <translation>Canal &amp;droit…</translation>
    </message>
    <message>
        <source>right</source>
        <translation>droit</translation>
    </message>
    <message>
        <source>&amp;Whole file as</source>
        <translation>&amp;Fichier entier en</translation>
    </message>
    <message>
        <source>converted</source>
        <translation>converti</translation>
    </message>
    <message>
        <source>Export</source>
        <translation>Exporter</translation>
    </message>
    <message>
        <source>WAV files (*.wav)</source>
        <translation>Fichiers WAV (*.wav)</translation>
    </message>
    <message>
        <source>Selected: %1 s</source>
        <translation>Sélectionné : %1 s</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>Aid&amp;e</translation>
    </message>
    <message>
        <source>&amp;Keys…</source>
        <translation>&amp;Touches…</translation>
    </message>
    <message>
        <source>&amp;About…</source>
        <translation>À &amp;propos…</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Fichier</translation>
    </message>
    <message>
        <source>&amp;Open…</source>
        <translation>&amp;Ouvrir…</translation>
    </message>
    <message>
        <source>&amp;Information…</source>
        <translation>&amp;Informations…</translation>
    </message>
    <message>
        <source>&amp;Settings…</source>
        <translation>&amp;Paramètres…</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Quitter</translation>
    </message>
    <message>
        <source>&amp;Undo</source>
        <translation>&amp;Annuler</translation>
    </message>
    <message>
        <source>&amp;Redo</source>
        <translation>&amp;Rétablir</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Édition</translation>
    </message>
    <message>
        <source>&amp;Playback</source>
        <translation>&amp;Lecture</translation>
    </message>
    <message>
        <source>&amp;Go to…</source>
        <translation>A&amp;ller à…</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>&amp;Affichage</translation>
    </message>
    <message>
        <source>&amp;Selection</source>
        <translation>&amp;Sélection</translation>
    </message>
    <message>
        <source>About</source>
        <translation>À propos</translation>
    </message>
    <message>
        <source>The waveform is drawn by %1.</source>
        <translation>La forme d’onde est dessinée par %1.</translation>
    </message>
    <message>
        <source>&amp;Follow the position</source>
        <translation>&amp;Suivre la position</translation>
    </message>
    <message>
        <source>Tools</source>
        <translation>Outils</translation>
    </message>
    <message>
        <source>Speed</source>
        <translation>Vitesse</translation>
    </message>
    <message>
        <source>Nothing was exported: another file was loaded meanwhile.</source>
        <translation>Rien n’a été exporté : un autre fichier a été chargé entre-temps.</translation>
    </message>
    <message>
        <source>This program runs with Qt %1.</source>
        <translation>Ce programme fonctionne avec Qt %1.</translation>
    </message>
    <message>
        <source>Select &amp;all</source>
        <translation>&amp;Tout sélectionner</translation>
    </message>
</context>
<context>
    <name>PointerLabel</name>
    <message>
        <source>%1: %2 dB</source>
        <translation>%1 : %2 dB</translation>
    </message>
</context>
<context>
    <name>RecentFiles</name>
    <message>
        <source>Open &amp;recent</source>
        <translation>Ouvrir un fichier &amp;récent</translation>
    </message>
    <message>
        <source>No files</source>
        <translation>Aucun fichier</translation>
    </message>
    <message>
        <source>&amp;Clear list</source>
        <translation>&amp;Vider la liste</translation>
    </message>
</context>
<context>
    <name>ScreenshotJob</name>
    <message>
        <source>No picture was saved: the waveform was not complete in time.</source>
        <translation>Aucune image n’a été enregistrée : la forme d’onde n’était pas complète à temps.</translation>
    </message>
</context>
<context>
    <name>SelectionHistory</name>
    <message>
        <source>selection</source>
        <translation>le changement de sélection</translation>
    </message>
</context>
<context>
    <name>SettingsDialog</name>
    <message>
        <source>Settings</source>
        <translation>Paramètres</translation>
    </message>
    <message>
        <source>Theme</source>
        <translation>Thème</translation>
    </message>
    <message>
        <source>Ctrl and the wheel toward you zooms out</source>
        <translation>Ctrl et la molette vers vous : zoom arrière</translation>
    </message>
    <message>
        <source>Notches of the wheel for twice the view</source>
        <translation>Crans de la molette pour une vue deux fois plus large</translation>
    </message>
</context>
<context>
    <name>ShortcutSheet</name>
    <message>
        <source>Keys</source>
        <translation>Touches</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1 : %2</translation>
    </message>
    <message>
        <source>Mouse in the waveform: drag to select, Shift and click to extend the selection, wheel to scroll, Ctrl and wheel to zoom, double click for the whole file.</source>
        <translation>Souris dans la forme d’onde : glisser sélectionne, Maj et clic étend la sélection, la molette fait défiler, Ctrl et molette zoome, un double clic montre tout le fichier.</translation>
    </message>
</context>
<context>
    <name>SpeedMenu</name>
    <message>
        <source>S&amp;peed</source>
        <translation>&amp;Vitesse</translation>
    </message>
    <message>
        <source>&amp;Slower</source>
        <translation>Plus &amp;lent</translation>
    </message>
    <message>
        <source>&amp;Faster</source>
        <translation>Plus &amp;rapide</translation>
    </message>
    <message>
        <source>&amp;Normal speed</source>
        <translation>Vitesse &amp;normale</translation>
    </message>
</context>
<context>
    <name>TaskProgress</name>
    <message>
        <source>Cancel</source>
        <translation>Annuler</translation>
    </message>
</context>
<context>
    <name>ThemeMenu</name>
    <message>
        <source>&amp;Theme</source>
        <translation>&amp;Thème</translation>
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
        <translation>Ce n’est pas un intervalle de secondes tel que 1.5-3 : %1</translation>
    </message>
    <message>
        <source>Shows and plays an audio file.</source>
        <translation>Affiche et lit un fichier audio.</translation>
    </message>
    <message>
        <source>Start playing at once.</source>
        <translation>Commencer la lecture immédiatement.</translation>
    </message>
    <message>
        <source>Show this range of seconds.</source>
        <translation>Afficher cet intervalle de secondes.</translation>
    </message>
    <message>
        <source>Select this range of seconds.</source>
        <translation>Sélectionner cet intervalle de secondes.</translation>
    </message>
    <message>
        <source>Save a picture of the window once it is complete, and quit.</source>
        <translation>Enregistrer une image de la fenêtre dès qu’elle est complète, et quitter.</translation>
    </message>
    <message>
        <source>The files to open.</source>
        <translation>Les fichiers à ouvrir.</translation>
    </message>
</context>
</TS>
