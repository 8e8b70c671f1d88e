<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr_FR">
<context>
    <name>AudioPlayer</name>
    <message>
        <source>The connection to the sound server was lost for good. Start the program again to hear sound.</source>
        <translation>La connexion au serveur de son est définitivement perdue. Redémarrez le programme pour retrouver le son.</translation>
    </message>
</context>
<context>
    <name>AudioPlayerActions</name>
    <message>
        <source>Play or pause</source>
        <translation>Lecture ou pause</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Arrêter</translation>
    </message>
    <message>
        <source>One second back</source>
        <translation>Reculer d’une seconde</translation>
    </message>
    <message>
        <source>One second forward</source>
        <translation>Avancer d’une seconde</translation>
    </message>
    <message>
        <source>Five seconds back</source>
        <translation>Reculer de cinq secondes</translation>
    </message>
    <message>
        <source>Five seconds forward</source>
        <translation>Avancer de cinq secondes</translation>
    </message>
    <message>
        <source>Go to the start</source>
        <translation>Aller au début</translation>
    </message>
    <message>
        <source>Go to the end</source>
        <translation>Aller à la fin</translation>
    </message>
    <message>
        <source>Loop</source>
        <translation>Boucle</translation>
    </message>
    <message>
        <source>Mute</source>
        <translation>Couper le son</translation>
    </message>
    <message>
        <source>Zoom in</source>
        <translation>Zoom avant</translation>
    </message>
    <message>
        <source>Zoom out</source>
        <translation>Zoom arrière</translation>
    </message>
    <message>
        <source>Show all</source>
        <translation>Tout afficher</translation>
    </message>
    <message>
        <source>Zoom to the selection</source>
        <translation>Zoomer sur la sélection</translation>
    </message>
    <message>
        <source>Start the selection at the position</source>
        <translation>Commencer la sélection à la position</translation>
    </message>
    <message>
        <source>End the selection at the position</source>
        <translation>Terminer la sélection à la position</translation>
    </message>
    <message>
        <source>Move the start back</source>
        <translation>Reculer le début</translation>
    </message>
    <message>
        <source>Move the start forward</source>
        <translation>Avancer le début</translation>
    </message>
    <message>
        <source>Move the end back</source>
        <translation>Reculer la fin</translation>
    </message>
    <message>
        <source>Move the end forward</source>
        <translation>Avancer la fin</translation>
    </message>
    <message>
        <source>Clear the selection</source>
        <translation>Effacer la sélection</translation>
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
        <translation>Le fichier ne contient pas d’audio d’un type lisible.</translation>
    </message>
    <message>
        <source>The file could not be opened.</source>
        <translation>Impossible d’ouvrir le fichier.</translation>
    </message>
    <message>
        <source>The file ends in the middle of its header.</source>
        <translation>Le fichier se termine au milieu de son en-tête.</translation>
    </message>
    <message>
        <source>The new file could not be written.</source>
        <translation>Impossible d’écrire le nouveau fichier.</translation>
    </message>
    <message>
        <source>The selection could not be saved.</source>
        <translation>Impossible d’enregistrer la sélection.</translation>
    </message>
    <message>
        <source>The channel could not be written to a file of its own.</source>
        <translation>Impossible d’écrire le canal dans un fichier séparé.</translation>
    </message>
    <message>
        <source>The file has more than two channels, or none.</source>
        <translation>Le fichier a plus de deux canaux, ou aucun.</translation>
    </message>
    <message>
        <source>Not a regular file</source>
        <translation>Ce n’est pas un fichier ordinaire</translation>
    </message>
    <message>
        <source>Another program has changed the file</source>
        <translation>Un autre programme a modifié le fichier</translation>
    </message>
    <message>
        <source>Updating...</source>
        <translation>Mise à jour...</translation>
    </message>
    <message>
        <source>Creating snippet...</source>
        <translation>Création de l’extrait...</translation>
    </message>
    <message>
        <source>Updated</source>
        <translation>Mis à jour</translation>
    </message>
</context>
<context>
    <name>vantoraudio::AudioEngine::AudioFileInfo</name>
    <message>
        <source>There is no file “%1”.</source>
        <translation>Le fichier « %1 » n’existe pas.</translation>
    </message>
    <message>
        <source>You have no permission to read “%1”.</source>
        <translation>Vous n’êtes pas autorisé à lire « %1 ».</translation>
    </message>
    <message>
        <source>“%1” is not a file.</source>
        <translation>« %1 » n’est pas un fichier.</translation>
    </message>
    <message>
        <source>“%1” holds no audio that can be decoded.</source>
        <translation>« %1 » ne contient pas d’audio décodable.</translation>
    </message>
    <message>
        <source>“%1” is damaged: none of its audio can be decoded.</source>
        <translation>« %1 » est endommagé : rien de son audio ne peut être décodé.</translation>
    </message>
    <message>
        <source>“%1” could not be read to its end. Is the disk still there?</source>
        <translation>« %1 » n’a pas pu être lu jusqu’à la fin. Le disque est-il toujours là ?</translation>
    </message>
    <message>
        <source>“%1” is protected against copying.</source>
        <translation>« %1 » est protégé contre la copie.</translation>
    </message>
    <message>
        <source>“%1” is too long for a WAV file of 4 GiB.</source>
        <translation>« %1 » est trop long pour un fichier WAV de 4 Gio.</translation>
    </message>
    <message>
        <source>The disk has too little space for the audio of “%1”.</source>
        <translation>Le disque n’a pas assez d’espace pour l’audio de « %1 ».</translation>
    </message>
    <message>
        <source>The audio of “%1” cannot be given that sample rate.</source>
        <translation>L’audio de « %1 » ne peut pas être converti à cette fréquence d’échantillonnage.</translation>
    </message>
    <message>
        <source>The audio of “%1” may not be written to that folder.</source>
        <translation>L’écriture de l’audio de « %1 » dans ce dossier n’est pas autorisée.</translation>
    </message>
    <message>
        <source>The audio of “%1” could not be written.</source>
        <translation>Impossible d’écrire l’audio de « %1 ».</translation>
    </message>
    <message>
        <source>Loading “%1” was cancelled.</source>
        <translation>Le chargement de « %1 » a été annulé.</translation>
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
        <translation>Canal G + D</translation>
    </message>
    <message>
        <source>Channel L</source>
        <translation>Canal G</translation>
    </message>
    <message>
        <source>Channel R</source>
        <translation>Canal D</translation>
    </message>
    <message>
        <source>Current position:</source>
        <translation>Position actuelle :</translation>
    </message>
    <message>
        <source>Total:</source>
        <translation>Total :</translation>
    </message>
    <message>
        <source>Audio file</source>
        <translation>Fichier audio</translation>
    </message>
    <message>
        <source>Load audio file</source>
        <translation>Charger un fichier audio</translation>
    </message>
    <message>
        <source>Use channel</source>
        <translation>Canal utilisé</translation>
    </message>
    <message>
        <source>Selection</source>
        <translation>Sélection</translation>
    </message>
    <message>
        <source>Start:</source>
        <translation>Début :</translation>
    </message>
    <message>
        <source>End:</source>
        <translation>Fin :</translation>
    </message>
    <message>
        <source>Use CTRL / CMD for coarse decrements</source>
        <translation>CTRL / CMD pour diminuer par grands pas</translation>
    </message>
    <message>
        <source>Use CTRL / CMD for coarse increments</source>
        <translation>CTRL / CMD pour augmenter par grands pas</translation>
    </message>
    <message>
        <source>Waveform</source>
        <translation>Forme d’onde</translation>
    </message>
    <message>
        <source>Mute</source>
        <translation>Couper le son</translation>
    </message>
    <message>
        <source>Volume</source>
        <translation>Volume</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Arrêter</translation>
    </message>
    <message>
        <source>Play</source>
        <translation>Lecture</translation>
    </message>
    <message>
        <source>Loop</source>
        <translation>Boucle</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Paramètres</translation>
    </message>
    <message>
        <source>Current position</source>
        <translation>Position actuelle</translation>
    </message>
    <message>
        <source>Total duration</source>
        <translation>Durée totale</translation>
    </message>
    <message>
        <source>Channel</source>
        <translation>Canal</translation>
    </message>
    <message>
        <source>Start of the selection</source>
        <translation>Début de la sélection</translation>
    </message>
    <message>
        <source>Start earlier</source>
        <translation>Début plus tôt</translation>
    </message>
    <message>
        <source>Start later</source>
        <translation>Début plus tard</translation>
    </message>
    <message>
        <source>End of the selection</source>
        <translation>Fin de la sélection</translation>
    </message>
    <message>
        <source>End earlier</source>
        <translation>Fin plus tôt</translation>
    </message>
    <message>
        <source>End later</source>
        <translation>Fin plus tard</translation>
    </message>
    <message>
        <source>Loading...</source>
        <translation>Chargement...</translation>
    </message>
    <message>
        <source>Audio files</source>
        <translation>Fichiers audio</translation>
    </message>
    <message>
        <source>All files</source>
        <translation>Tous les fichiers</translation>
    </message>
</context>
<context>
    <name>vantoraudio::vantorAudioEngine::UI::BGFXWaveformWidget</name>
    <message>
        <source>%1 of %2</source>
        <translation>%1 sur %2</translation>
    </message>
    <message>
        <source>Nothing is selected.</source>
        <translation>Rien n’est sélectionné.</translation>
    </message>
    <message>
        <source>Selected from %1 to %2.</source>
        <translation>Sélectionné de %1 à %2.</translation>
    </message>
</context>
</TS>
