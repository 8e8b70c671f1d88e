<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="es_ES">
<context>
    <name>Appearance</name>
    <message>
        <source>Background</source>
        <translation>Fondo</translation>
    </message>
    <message>
        <source>Waveform</source>
        <translation>Forma de onda</translation>
    </message>
    <message>
        <source>Selection</source>
        <translation>Selección</translation>
    </message>
    <message>
        <source>Position</source>
        <translation>Posición</translation>
    </message>
    <message>
        <source>Grid</source>
        <translation>Cuadrícula</translation>
    </message>
    <message>
        <source>Frame</source>
        <translation>Marco</translation>
    </message>
    <message>
        <source>Scale</source>
        <translation>Escala</translation>
    </message>
    <message>
        <source>As the system</source>
        <translation>Como el sistema</translation>
    </message>
    <message>
        <source>Light</source>
        <translation>Claro</translation>
    </message>
    <message>
        <source>Dark</source>
        <translation>Oscuro</translation>
    </message>
    <message>
        <source>High contrast</source>
        <translation>Contraste alto</translation>
    </message>
</context>
<context>
    <name>DeviceMenu</name>
    <message>
        <source>&amp;Output device</source>
        <translation>&amp;Dispositivo de salida</translation>
    </message>
    <message>
        <source>No output device</source>
        <translation>Ningún dispositivo de salida</translation>
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
        <translation>Arrastre la selección desde aquí a otro programa</translation>
    </message>
    <message>
        <source>Drag selection</source>
        <translation>Arrastrar la selección</translation>
    </message>
    <message>
        <source>%1 selection</source>
        <translation>%1 selección</translation>
    </message>
</context>
<context>
    <name>FailureBar</name>
    <message>
        <source>Hide this message</source>
        <translation>Ocultar este mensaje</translation>
    </message>
</context>
<context>
    <name>Failures</name>
    <message>
        <source>“%1” cannot be written: is there room, and may you write there?</source>
        <translation>No se puede escribir «%1»: ¿hay espacio y tiene permiso para escribir ahí?</translation>
    </message>
    <message>
        <source>The channel of “%1” cannot be prepared: is there room, and is the file still there?</source>
        <translation>No se puede preparar el canal de «%1»: ¿hay espacio y sigue ahí el archivo?</translation>
    </message>
    <message>
        <source>“%1” is there already: please choose another name.</source>
        <translation>«%1» ya existe: elija otro nombre.</translation>
    </message>
    <message>
        <source>“%1” is there already. Do you want to replace it?</source>
        <translation>«%1» ya existe. ¿Desea reemplazarlo?</translation>
    </message>
    <message>
        <source>“%1” cannot be played: %2</source>
        <translation>No se puede reproducir «%1»: %2</translation>
    </message>
    <message>
        <source>“%1” is the file that is open. If you replace it, only what you export is left of it. Do you want that?</source>
        <translation>«%1» es el archivo abierto. Si lo reemplaza, solo quedará de él lo que exporte. ¿Desea hacerlo?</translation>
    </message>
</context>
<context>
    <name>FileExport</name>
    <message>
        <source>Exporting</source>
        <translation>Exportando</translation>
    </message>
</context>
<context>
    <name>FileInformation</name>
    <message>
        <source>Information</source>
        <translation>Información</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Nombre</translation>
    </message>
    <message>
        <source>Folder</source>
        <translation>Carpeta</translation>
    </message>
    <message>
        <source>Title</source>
        <translation>Título</translation>
    </message>
    <message>
        <source>Artist</source>
        <translation>Artista</translation>
    </message>
    <message>
        <source>Format</source>
        <translation>Formato</translation>
    </message>
    <message>
        <source>Coding</source>
        <translation>Codificación</translation>
    </message>
    <message>
        <source>Sample rate</source>
        <translation>Frecuencia de muestreo</translation>
    </message>
    <message>
        <source>%1 Hz</source>
        <translation>%1 Hz</translation>
    </message>
    <message>
        <source>Channels</source>
        <translation>Canales</translation>
    </message>
    <message>
        <source>Bits of a sample</source>
        <translation>Bits por muestra</translation>
    </message>
    <message>
        <source>Length</source>
        <translation>Duración</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Tamaño</translation>
    </message>
    <message>
        <source>%1:</source>
        <translation>%1:</translation>
    </message>
    <message>
        <source>Note</source>
        <translation>Nota</translation>
    </message>
    <message>
        <source>The file cannot be read now. This is what was loaded of it.</source>
        <translation>Ahora no se puede leer el archivo. Esto es lo que se cargó de él.</translation>
    </message>
</context>
<context>
    <name>FileList</name>
    <message>
        <source>Files</source>
        <translation>Archivos</translation>
    </message>
    <message>
        <source>&amp;Next file</source>
        <translation>Archivo si&amp;guiente</translation>
    </message>
    <message>
        <source>&amp;Previous file</source>
        <translation>Archivo an&amp;terior</translation>
    </message>
    <message>
        <source>&amp;Remove from the list</source>
        <translation>&amp;Quitar de la lista</translation>
    </message>
    <message>
        <source>Loaded</source>
        <translation>Cargado</translation>
    </message>
</context>
<context>
    <name>GoTo</name>
    <message>
        <source>Go to</source>
        <translation>Ir a</translation>
    </message>
    <message>
        <source>&amp;Time:</source>
        <translation>&amp;Tiempo:</translation>
    </message>
    <message>
        <source>Such as 7.5, 1:30 or 1:02:03.250</source>
        <translation>Por ejemplo 7,5, 1:30 o 1:02:03,250</translation>
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
        <translation>en silencio</translation>
    </message>
    <message>
        <source>Level</source>
        <translation>Nivel</translation>
    </message>
    <message>
        <source>Level of what is played, in decibels of full scale</source>
        <translation>Nivel de lo que se reproduce, en decibelios respecto a la escala completa</translation>
    </message>
</context>
<context>
    <name>PlayerWindow</name>
    <message>
        <source>Wheel: scroll   Ctrl + wheel: zoom   Double click: whole file   Drag: select   Space: play and pause   F1: all keys</source>
        <translation>Rueda: desplazar   Ctrl + rueda: zoom   Doble clic: archivo completo   Arrastrar: seleccionar   Espacio: reproducir y pausar   F1: todas las teclas</translation>
    </message>
    <message>
        <source>Saved “%1”.</source>
        <translation>Se guardó «%1».</translation>
    </message>
    <message>
        <source>Cancelled.</source>
        <translation>Cancelado.</translation>
    </message>
    <message>
        <source>Player</source>
        <translation>Reproductor</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Abrir</translation>
    </message>
    <message>
        <source>44.1 kHz, stereo, 16 bit</source>
        <translation>44,1 kHz, estéreo, 16 bits</translation>
    </message>
    <message>
        <source>48 kHz, stereo, 16 bit</source>
        <translation>48 kHz, estéreo, 16 bits</translation>
    </message>
    <message>
        <source>48 kHz, stereo, 32 bit</source>
        <translation>48 kHz, estéreo, 32 bits</translation>
    </message>
    <message>
        <source>96 kHz, stereo, float</source>
        <translation>96 kHz, estéreo, coma flotante</translation>
    </message>
    <message>
        <source>16 kHz, mono, 16 bit</source>
        <translation>16 kHz, mono, 16 bits</translation>
    </message>
    <message>
        <source>&amp;Export</source>
        <translation>&amp;Exportar</translation>
    </message>
    <message>
        <source>&amp;Selection…</source>
        <translation>&amp;Selección…</translation>
    </message>
    <message>
        <source>selection</source>
        <translation>selección</translation>
    </message>
    <message>
        <source>&amp;Left channel…</source>
        <translation>Canal &amp;izquierdo…</translation>
    </message>
    <message>
        <source>left</source>
        <translation>izquierdo</translation>
    </message>
    <message>
        <source>&amp;Right channel…</source>
        <translation>Canal &amp;derecho…</translation>
    </message>
    <message>
        <source>right</source>
        <translation>derecho</translation>
    </message>
    <message>
        <source>&amp;Whole file as</source>
        <translation>&amp;Archivo completo como</translation>
    </message>
    <message>
        <source>converted</source>
        <translation>convertido</translation>
    </message>
    <message>
        <source>Export</source>
        <translation>Exportar</translation>
    </message>
    <message>
        <source>WAV files (*.wav)</source>
        <translation>Archivos WAV (*.wav)</translation>
    </message>
    <message>
        <source>Selected: %1 s</source>
        <translation>Seleccionado: %1 s</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>A&amp;yuda</translation>
    </message>
    <message>
        <source>&amp;Keys…</source>
        <translation>&amp;Teclas…</translation>
    </message>
    <message>
        <source>&amp;About…</source>
        <translation>&amp;Acerca de…</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Archivo</translation>
    </message>
    <message>
        <source>&amp;Open…</source>
        <translation>&amp;Abrir…</translation>
    </message>
    <message>
        <source>&amp;Information…</source>
        <translation>&amp;Información…</translation>
    </message>
    <message>
        <source>&amp;Settings…</source>
        <translation>&amp;Configuración…</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Salir</translation>
    </message>
    <message>
        <source>&amp;Undo</source>
        <translation>&amp;Deshacer</translation>
    </message>
    <message>
        <source>&amp;Redo</source>
        <translation>&amp;Rehacer</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Editar</translation>
    </message>
    <message>
        <source>&amp;Playback</source>
        <translation>&amp;Reproducción</translation>
    </message>
    <message>
        <source>&amp;Go to…</source>
        <translation>&amp;Ir a…</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>&amp;Ver</translation>
    </message>
    <message>
        <source>&amp;Selection</source>
        <translation>&amp;Selección</translation>
    </message>
    <message>
        <source>About</source>
        <translation>Acerca de</translation>
    </message>
    <message>
        <source>The waveform is drawn by %1.</source>
        <translation>La forma de onda la dibuja %1.</translation>
    </message>
    <message>
        <source>&amp;Follow the position</source>
        <translation>&amp;Seguir la posición</translation>
    </message>
    <message>
        <source>Tools</source>
        <translation>Herramientas</translation>
    </message>
    <message>
        <source>Speed</source>
        <translation>Velocidad</translation>
    </message>
    <message>
        <source>Nothing was exported: another file was loaded meanwhile.</source>
        <translation>No se exportó nada: entretanto se cargó otro archivo.</translation>
    </message>
    <message>
        <source>This program runs with Qt %1.</source>
        <translation>Este programa funciona con Qt %1.</translation>
    </message>
    <message>
        <source>Select &amp;all</source>
        <translation>Seleccionar &amp;todo</translation>
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
        <translation>Abrir &amp;reciente</translation>
    </message>
    <message>
        <source>No files</source>
        <translation>Ningún archivo</translation>
    </message>
    <message>
        <source>&amp;Clear list</source>
        <translation>&amp;Vaciar la lista</translation>
    </message>
</context>
<context>
    <name>ScreenshotJob</name>
    <message>
        <source>No picture was saved: the waveform was not complete in time.</source>
        <translation>No se ha guardado ninguna imagen: la forma de onda no estaba completa a tiempo.</translation>
    </message>
</context>
<context>
    <name>SelectionHistory</name>
    <message>
        <source>selection</source>
        <translation>el cambio de selección</translation>
    </message>
</context>
<context>
    <name>SettingsDialog</name>
    <message>
        <source>Settings</source>
        <translation>Configuración</translation>
    </message>
    <message>
        <source>Theme</source>
        <translation>Tema</translation>
    </message>
    <message>
        <source>Ctrl and the wheel toward you zooms out</source>
        <translation>Ctrl y la rueda hacia usted aleja</translation>
    </message>
    <message>
        <source>Notches of the wheel for twice the view</source>
        <translation>Pasos de la rueda para una vista el doble de ancha</translation>
    </message>
</context>
<context>
    <name>ShortcutSheet</name>
    <message>
        <source>Keys</source>
        <translation>Teclas</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>Mouse in the waveform: drag to select, Shift and click to extend the selection, wheel to scroll, Ctrl and wheel to zoom, double click for the whole file.</source>
        <translation>Ratón en la forma de onda: arrastrar selecciona, Mayús y clic amplía la selección, la rueda desplaza, Ctrl y rueda aplica zoom, doble clic muestra todo el archivo.</translation>
    </message>
</context>
<context>
    <name>SpeedMenu</name>
    <message>
        <source>S&amp;peed</source>
        <translation>&amp;Velocidad</translation>
    </message>
    <message>
        <source>&amp;Slower</source>
        <translation>Más &amp;lento</translation>
    </message>
    <message>
        <source>&amp;Faster</source>
        <translation>Más &amp;rápido</translation>
    </message>
    <message>
        <source>&amp;Normal speed</source>
        <translation>Velocidad &amp;normal</translation>
    </message>
</context>
<context>
    <name>TaskProgress</name>
    <message>
        <source>Cancel</source>
        <translation>Cancelar</translation>
    </message>
</context>
<context>
    <name>ThemeMenu</name>
    <message>
        <source>&amp;Theme</source>
        <translation>&amp;Tema</translation>
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
        <translation>No es un intervalo de segundos como 1.5-3: %1</translation>
    </message>
    <message>
        <source>Shows and plays an audio file.</source>
        <translation>Muestra y reproduce un archivo de audio.</translation>
    </message>
    <message>
        <source>Start playing at once.</source>
        <translation>Empezar a reproducir de inmediato.</translation>
    </message>
    <message>
        <source>Show this range of seconds.</source>
        <translation>Mostrar este intervalo de segundos.</translation>
    </message>
    <message>
        <source>Select this range of seconds.</source>
        <translation>Seleccionar este intervalo de segundos.</translation>
    </message>
    <message>
        <source>Save a picture of the window once it is complete, and quit.</source>
        <translation>Guardar una imagen de la ventana cuando esté completa, y salir.</translation>
    </message>
    <message>
        <source>The files to open.</source>
        <translation>Los archivos que se abren.</translation>
    </message>
</context>
</TS>
