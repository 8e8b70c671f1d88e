<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="es_ES">
<context>
    <name>AudioPlayer</name>
    <message>
        <source>The connection to the sound server was lost for good. Start the program again to hear sound.</source>
        <translation>Se ha perdido definitivamente la conexión con el servidor de sonido. Reinicie el programa para volver a oír sonido.</translation>
    </message>
</context>
<context>
    <name>AudioPlayerActions</name>
    <message>
        <source>Play or pause</source>
        <translation>Reproducir o pausar</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Detener</translation>
    </message>
    <message>
        <source>One second back</source>
        <translation>Retroceder un segundo</translation>
    </message>
    <message>
        <source>One second forward</source>
        <translation>Avanzar un segundo</translation>
    </message>
    <message>
        <source>Five seconds back</source>
        <translation>Retroceder cinco segundos</translation>
    </message>
    <message>
        <source>Five seconds forward</source>
        <translation>Avanzar cinco segundos</translation>
    </message>
    <message>
        <source>Go to the start</source>
        <translation>Ir al inicio</translation>
    </message>
    <message>
        <source>Go to the end</source>
        <translation>Ir al final</translation>
    </message>
    <message>
        <source>Loop</source>
        <translation>Bucle</translation>
    </message>
    <message>
        <source>Mute</source>
        <translation>Silenciar</translation>
    </message>
    <message>
        <source>Zoom in</source>
        <translation>Acercar</translation>
    </message>
    <message>
        <source>Zoom out</source>
        <translation>Alejar</translation>
    </message>
    <message>
        <source>Show all</source>
        <translation>Mostrar todo</translation>
    </message>
    <message>
        <source>Zoom to the selection</source>
        <translation>Ampliar a la selección</translation>
    </message>
    <message>
        <source>Start the selection at the position</source>
        <translation>Iniciar la selección en la posición</translation>
    </message>
    <message>
        <source>End the selection at the position</source>
        <translation>Terminar la selección en la posición</translation>
    </message>
    <message>
        <source>Move the start back</source>
        <translation>Mover el inicio hacia atrás</translation>
    </message>
    <message>
        <source>Move the start forward</source>
        <translation>Mover el inicio hacia delante</translation>
    </message>
    <message>
        <source>Move the end back</source>
        <translation>Mover el final hacia atrás</translation>
    </message>
    <message>
        <source>Move the end forward</source>
        <translation>Mover el final hacia delante</translation>
    </message>
    <message>
        <source>Clear the selection</source>
        <translation>Anular la selección</translation>
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
        <translation>El archivo no contiene audio de un tipo que se pueda leer.</translation>
    </message>
    <message>
        <source>The file could not be opened.</source>
        <translation>No se pudo abrir el archivo.</translation>
    </message>
    <message>
        <source>The file ends in the middle of its header.</source>
        <translation>El archivo termina en medio de su encabezado.</translation>
    </message>
    <message>
        <source>The new file could not be written.</source>
        <translation>No se pudo escribir el archivo nuevo.</translation>
    </message>
    <message>
        <source>The selection could not be saved.</source>
        <translation>No se pudo guardar la selección.</translation>
    </message>
    <message>
        <source>The channel could not be written to a file of its own.</source>
        <translation>No se pudo escribir el canal en un archivo propio.</translation>
    </message>
    <message>
        <source>The file has more than two channels, or none.</source>
        <translation>El archivo tiene más de dos canales, o ninguno.</translation>
    </message>
    <message>
        <source>Not a regular file</source>
        <translation>No es un archivo normal</translation>
    </message>
    <message>
        <source>Another program has changed the file</source>
        <translation>Otro programa ha modificado el archivo</translation>
    </message>
    <message>
        <source>Updating...</source>
        <translation>Actualizando...</translation>
    </message>
    <message>
        <source>Creating snippet...</source>
        <translation>Creando fragmento...</translation>
    </message>
    <message>
        <source>Updated</source>
        <translation>Actualizado</translation>
    </message>
</context>
<context>
    <name>vantoraudio::AudioEngine::AudioFileInfo</name>
    <message>
        <source>There is no file “%1”.</source>
        <translation>No existe el archivo «%1».</translation>
    </message>
    <message>
        <source>You have no permission to read “%1”.</source>
        <translation>No tiene permiso para leer «%1».</translation>
    </message>
    <message>
        <source>“%1” is not a file.</source>
        <translation>«%1» no es un archivo.</translation>
    </message>
    <message>
        <source>“%1” holds no audio that can be decoded.</source>
        <translation>«%1» no contiene audio que se pueda decodificar.</translation>
    </message>
    <message>
        <source>“%1” is damaged: none of its audio can be decoded.</source>
        <translation>«%1» está dañado: no se puede decodificar nada de su audio.</translation>
    </message>
    <message>
        <source>“%1” could not be read to its end. Is the disk still there?</source>
        <translation>No se pudo leer «%1» hasta el final. ¿Sigue ahí el disco?</translation>
    </message>
    <message>
        <source>“%1” is protected against copying.</source>
        <translation>«%1» está protegido contra copia.</translation>
    </message>
    <message>
        <source>“%1” is too long for a WAV file of 4 GiB.</source>
        <translation>«%1» es demasiado largo para un archivo WAV de 4 GiB.</translation>
    </message>
    <message>
        <source>The disk has too little space for the audio of “%1”.</source>
        <translation>El disco tiene muy poco espacio para el audio de «%1».</translation>
    </message>
    <message>
        <source>The audio of “%1” cannot be given that sample rate.</source>
        <translation>El audio de «%1» no se puede convertir a esa frecuencia de muestreo.</translation>
    </message>
    <message>
        <source>The audio of “%1” may not be written to that folder.</source>
        <translation>No se permite escribir el audio de «%1» en esa carpeta.</translation>
    </message>
    <message>
        <source>The audio of “%1” could not be written.</source>
        <translation>No se pudo escribir el audio de «%1».</translation>
    </message>
    <message>
        <source>Loading “%1” was cancelled.</source>
        <translation>Se canceló la carga de «%1».</translation>
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
        <translation>Canal I + D</translation>
    </message>
    <message>
        <source>Channel L</source>
        <translation>Canal I</translation>
    </message>
    <message>
        <source>Channel R</source>
        <translation>Canal D</translation>
    </message>
    <message>
        <source>Current position:</source>
        <translation>Posición actual:</translation>
    </message>
    <message>
        <source>Total:</source>
        <translation>Total:</translation>
    </message>
    <message>
        <source>Audio file</source>
        <translation>Archivo de audio</translation>
    </message>
    <message>
        <source>Load audio file</source>
        <translation>Cargar archivo de audio</translation>
    </message>
    <message>
        <source>Use channel</source>
        <translation>Usar canal</translation>
    </message>
    <message>
        <source>Selection</source>
        <translation>Selección</translation>
    </message>
    <message>
        <source>Start:</source>
        <translation>Inicio:</translation>
    </message>
    <message>
        <source>End:</source>
        <translation>Fin:</translation>
    </message>
    <message>
        <source>Use CTRL / CMD for coarse decrements</source>
        <translation>Use CTRL / CMD para disminuir en pasos grandes</translation>
    </message>
    <message>
        <source>Use CTRL / CMD for coarse increments</source>
        <translation>Use CTRL / CMD para aumentar en pasos grandes</translation>
    </message>
    <message>
        <source>Waveform</source>
        <translation>Forma de onda</translation>
    </message>
    <message>
        <source>Mute</source>
        <translation>Silenciar</translation>
    </message>
    <message>
        <source>Volume</source>
        <translation>Volumen</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Detener</translation>
    </message>
    <message>
        <source>Play</source>
        <translation>Reproducir</translation>
    </message>
    <message>
        <source>Loop</source>
        <translation>Bucle</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Configuración</translation>
    </message>
    <message>
        <source>Current position</source>
        <translation>Posición actual</translation>
    </message>
    <message>
        <source>Total duration</source>
        <translation>Duración total</translation>
    </message>
    <message>
        <source>Channel</source>
        <translation>Canal</translation>
    </message>
    <message>
        <source>Start of the selection</source>
        <translation>Inicio de la selección</translation>
    </message>
    <message>
        <source>Start earlier</source>
        <translation>Empezar antes</translation>
    </message>
    <message>
        <source>Start later</source>
        <translation>Empezar después</translation>
    </message>
    <message>
        <source>End of the selection</source>
        <translation>Final de la selección</translation>
    </message>
    <message>
        <source>End earlier</source>
        <translation>Terminar antes</translation>
    </message>
    <message>
        <source>End later</source>
        <translation>Terminar después</translation>
    </message>
    <message>
        <source>Loading...</source>
        <translation>Cargando...</translation>
    </message>
    <message>
        <source>Audio files</source>
        <translation>Archivos de audio</translation>
    </message>
    <message>
        <source>All files</source>
        <translation>Todos los archivos</translation>
    </message>
</context>
<context>
    <name>vantoraudio::vantorAudioEngine::UI::BGFXWaveformWidget</name>
    <message>
        <source>%1 of %2</source>
        <translation>%1 de %2</translation>
    </message>
    <message>
        <source>Nothing is selected.</source>
        <translation>No hay nada seleccionado.</translation>
    </message>
    <message>
        <source>Selected from %1 to %2.</source>
        <translation>Seleccionado de %1 a %2.</translation>
    </message>
</context>
</TS>
