<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ja_JP">
<context>
    <name>Appearance</name>
    <message>
        <source>Background</source>
        <translation>背景</translation>
    </message>
    <message>
        <source>Waveform</source>
        <translation>波形</translation>
    </message>
    <message>
        <source>Selection</source>
        <translation>選択範囲</translation>
    </message>
    <message>
        <source>Position</source>
        <translation>位置</translation>
    </message>
    <message>
        <source>Grid</source>
        <translation>グリッド</translation>
    </message>
    <message>
        <source>Frame</source>
        <translation>枠</translation>
    </message>
    <message>
        <source>Scale</source>
        <translation>目盛</translation>
    </message>
    <message>
        <source>As the system</source>
        <translation>システムに合わせる</translation>
    </message>
    <message>
        <source>Light</source>
        <translation>ライト</translation>
    </message>
    <message>
        <source>Dark</source>
        <translation>ダーク</translation>
    </message>
    <message>
        <source>High contrast</source>
        <translation>ハイコントラスト</translation>
    </message>
</context>
<context>
    <name>DeviceMenu</name>
    <message>
        <source>&amp;Output device</source>
        <translation>出力デバイス(&amp;O)</translation>
    </message>
    <message>
        <source>No output device</source>
        <translation>出力デバイスがありません</translation>
    </message>
    <message>
        <source>%1 (%2)</source>
        <extracomment>%1: name of an output device, %2: its number among the devices of that name</extracomment>
        <translation>%1（%2）</translation>
    </message>
</context>
<context>
    <name>DragHandle</name>
    <message>
        <source>Drag the selection from here into another program</source>
        <translation>ここから選択範囲を別のプログラムへドラッグします</translation>
    </message>
    <message>
        <source>Drag selection</source>
        <translation>選択範囲をドラッグ</translation>
    </message>
    <message>
        <source>%1 selection</source>
        <translation>%1 選択範囲</translation>
    </message>
</context>
<context>
    <name>FailureBar</name>
    <message>
        <source>Hide this message</source>
        <translation>このメッセージを隠す</translation>
    </message>
</context>
<context>
    <name>Failures</name>
    <message>
        <source>“%1” cannot be written: is there room, and may you write there?</source>
        <translation>「%1」を書き込めません。空き容量と書き込み権限を確認してください。</translation>
    </message>
    <message>
        <source>The channel of “%1” cannot be prepared: is there room, and is the file still there?</source>
        <translation>「%1」のチャンネルを準備できません。空き容量とファイルの有無を確認してください。</translation>
    </message>
    <message>
        <source>“%1” is there already: please choose another name.</source>
        <translation>「%1」は既に存在します。別の名前を選んでください。</translation>
    </message>
    <message>
        <source>“%1” is there already. Do you want to replace it?</source>
        <translation>「%1」は既に存在します。置き換えますか？</translation>
    </message>
    <message>
        <source>“%1” cannot be played: %2</source>
        <translation>「%1」を再生できません: %2</translation>
    </message>
    <message>
        <source>“%1” is the file that is open. If you replace it, only what you export is left of it. Do you want that?</source>
        <translation>「%1」は現在開いているファイルです。置き換えると、書き出した部分だけが残ります。続けますか？</translation>
    </message>
</context>
<context>
    <name>FileExport</name>
    <message>
        <source>Exporting</source>
        <translation>書き出し中</translation>
    </message>
</context>
<context>
    <name>FileInformation</name>
    <message>
        <source>Information</source>
        <translation>情報</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>名前</translation>
    </message>
    <message>
        <source>Folder</source>
        <translation>フォルダー</translation>
    </message>
    <message>
        <source>Title</source>
        <translation>タイトル</translation>
    </message>
    <message>
        <source>Artist</source>
        <translation>アーティスト</translation>
    </message>
    <message>
        <source>Format</source>
        <translation>形式</translation>
    </message>
    <message>
        <source>Coding</source>
        <translation>符号化方式</translation>
    </message>
    <message>
        <source>Sample rate</source>
        <translation>サンプルレート</translation>
    </message>
    <message>
        <source>%1 Hz</source>
        <translation>%1 Hz</translation>
    </message>
    <message>
        <source>Channels</source>
        <translation>チャンネル数</translation>
    </message>
    <message>
        <source>Bits of a sample</source>
        <translation>サンプルあたりのビット数</translation>
    </message>
    <message>
        <source>Length</source>
        <translation>長さ</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>サイズ</translation>
    </message>
    <message>
        <source>%1:</source>
        <translation>%1:</translation>
    </message>
    <message>
        <source>Note</source>
        <translation>注記</translation>
    </message>
    <message>
        <source>The file cannot be read now. This is what was loaded of it.</source>
        <translation>現在このファイルは読み取れません。読み込み済みの内容を表示しています。</translation>
    </message>
</context>
<context>
    <name>FileList</name>
    <message>
        <source>Files</source>
        <translation>ファイル</translation>
    </message>
    <message>
        <source>&amp;Next file</source>
        <translation>次のファイル(&amp;N)</translation>
    </message>
    <message>
        <source>&amp;Previous file</source>
        <translation>前のファイル(&amp;P)</translation>
    </message>
    <message>
        <source>&amp;Remove from the list</source>
        <translation>一覧から削除(&amp;R)</translation>
    </message>
    <message>
        <source>Loaded</source>
        <translation>読み込み済み</translation>
    </message>
</context>
<context>
    <name>GoTo</name>
    <message>
        <source>Go to</source>
        <translation>移動</translation>
    </message>
    <message>
        <source>&amp;Time:</source>
        <translation>時間(&amp;T):</translation>
    </message>
    <message>
        <source>Such as 7.5, 1:30 or 1:02:03.250</source>
        <translation>例: 7.5、1:30、1:02:03.250</translation>
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
        <translation>無音</translation>
    </message>
    <message>
        <source>Level</source>
        <translation>レベル</translation>
    </message>
    <message>
        <source>Level of what is played, in decibels of full scale</source>
        <translation>再生音のレベル（フルスケール基準、デシベル）</translation>
    </message>
</context>
<context>
    <name>PlayerWindow</name>
    <message>
        <source>Wheel: scroll   Ctrl + wheel: zoom   Double click: whole file   Drag: select   Space: play and pause   F1: all keys</source>
        <translation>ホイール: スクロール   Ctrl + ホイール: ズーム   ダブルクリック: ファイル全体   ドラッグ: 選択   スペース: 再生と一時停止   F1: すべてのキー</translation>
    </message>
    <message>
        <source>Saved “%1”.</source>
        <translation>「%1」を保存しました。</translation>
    </message>
    <message>
        <source>Cancelled.</source>
        <translation>キャンセルしました。</translation>
    </message>
    <message>
        <source>Player</source>
        <translation>プレーヤー</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>開く</translation>
    </message>
    <message>
        <source>44.1 kHz, stereo, 16 bit</source>
        <translation>44.1 kHz、ステレオ、16 ビット</translation>
    </message>
    <message>
        <source>48 kHz, stereo, 16 bit</source>
        <translation>48 kHz、ステレオ、16 ビット</translation>
    </message>
    <message>
        <source>48 kHz, stereo, 32 bit</source>
        <translation>48 kHz、ステレオ、32 ビット</translation>
    </message>
    <message>
        <source>96 kHz, stereo, float</source>
        <translation>96 kHz、ステレオ、浮動小数点</translation>
    </message>
    <message>
        <source>16 kHz, mono, 16 bit</source>
        <translation>16 kHz、モノラル、16 ビット</translation>
    </message>
    <message>
        <source>&amp;Export</source>
        <translation>書き出し(&amp;E)</translation>
    </message>
    <message>
        <source>&amp;Selection…</source>
        <translation>選択範囲(&amp;S)…</translation>
    </message>
    <message>
        <source>selection</source>
        <translation>選択範囲</translation>
    </message>
    <message>
        <source>&amp;Left channel…</source>
        <translation>左チャンネル(&amp;L)…</translation>
    </message>
    <message>
        <source>left</source>
        <translation>左</translation>
    </message>
    <message>
        <source>&amp;Right channel…</source>
        <translation>右チャンネル(&amp;R)…</translation>
    </message>
    <message>
        <source>right</source>
        <translation>右</translation>
    </message>
    <message>
        <source>&amp;Whole file as</source>
        <translation>ファイル全体(&amp;W)</translation>
    </message>
    <message>
        <source>converted</source>
        <translation>変換済み</translation>
    </message>
    <message>
        <source>Export</source>
        <translation>書き出し</translation>
    </message>
    <message>
        <source>WAV files (*.wav)</source>
        <translation>WAV ファイル (*.wav)</translation>
    </message>
    <message>
        <source>Selected: %1 s</source>
        <translation>選択範囲: %1 秒</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>ヘルプ(&amp;H)</translation>
    </message>
    <message>
        <source>&amp;Keys…</source>
        <translation>キー(&amp;K)…</translation>
    </message>
    <message>
        <source>&amp;About…</source>
        <translation>バージョン情報(&amp;A)…</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>ファイル(&amp;F)</translation>
    </message>
    <message>
        <source>&amp;Open…</source>
        <translation>開く(&amp;O)…</translation>
    </message>
    <message>
        <source>&amp;Information…</source>
        <translation>情報(&amp;I)…</translation>
    </message>
    <message>
        <source>&amp;Settings…</source>
        <translation>設定(&amp;S)…</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>終了(&amp;Q)</translation>
    </message>
    <message>
        <source>&amp;Undo</source>
        <translation>元に戻す(&amp;U)</translation>
    </message>
    <message>
        <source>&amp;Redo</source>
        <translation>やり直す(&amp;R)</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>編集(&amp;E)</translation>
    </message>
    <message>
        <source>&amp;Playback</source>
        <translation>再生(&amp;P)</translation>
    </message>
    <message>
        <source>&amp;Go to…</source>
        <translation>移動(&amp;G)…</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>表示(&amp;V)</translation>
    </message>
    <message>
        <source>&amp;Selection</source>
        <translation>選択範囲(&amp;S)</translation>
    </message>
    <message>
        <source>About</source>
        <translation>バージョン情報</translation>
    </message>
    <message>
        <source>The waveform is drawn by %1.</source>
        <translation>波形は %1 によって描画されています。</translation>
    </message>
    <message>
        <source>&amp;Follow the position</source>
        <translation>位置に追従(&amp;F)</translation>
    </message>
    <message>
        <source>Tools</source>
        <translation>ツール</translation>
    </message>
    <message>
        <source>Speed</source>
        <translation>速度</translation>
    </message>
    <message>
        <source>Nothing was exported: another file was loaded meanwhile.</source>
        <translation>何も書き出されませんでした。その間に別のファイルが読み込まれました。</translation>
    </message>
    <message>
        <source>This program runs with Qt %1.</source>
        <translation>このプログラムは Qt %1 で動作しています。</translation>
    </message>
    <message>
        <source>Select &amp;all</source>
        <translation>すべて選択(&amp;A)</translation>
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
        <translation>最近使ったファイル(&amp;R)</translation>
    </message>
    <message>
        <source>No files</source>
        <translation>ファイルがありません</translation>
    </message>
    <message>
        <source>&amp;Clear list</source>
        <translation>一覧を消去(&amp;C)</translation>
    </message>
</context>
<context>
    <name>ScreenshotJob</name>
    <message>
        <source>No picture was saved: the waveform was not complete in time.</source>
        <translation>画像は保存されませんでした: 波形が時間内に完成しませんでした。</translation>
    </message>
</context>
<context>
    <name>SelectionHistory</name>
    <message>
        <source>selection</source>
        <translation>選択範囲の変更</translation>
    </message>
</context>
<context>
    <name>SettingsDialog</name>
    <message>
        <source>Settings</source>
        <translation>設定</translation>
    </message>
    <message>
        <source>Theme</source>
        <translation>テーマ</translation>
    </message>
    <message>
        <source>Ctrl and the wheel toward you zooms out</source>
        <translation>Ctrl を押しながらホイールを手前に回すと縮小</translation>
    </message>
    <message>
        <source>Notches of the wheel for twice the view</source>
        <translation>表示幅を2倍にするホイールの目盛り数</translation>
    </message>
</context>
<context>
    <name>ShortcutSheet</name>
    <message>
        <source>Keys</source>
        <translation>キー</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>Mouse in the waveform: drag to select, Shift and click to extend the selection, wheel to scroll, Ctrl and wheel to zoom, double click for the whole file.</source>
        <translation>波形でのマウス操作: ドラッグで選択、Shift とクリックで選択範囲を拡張、ホイールでスクロール、Ctrl とホイールでズーム、ダブルクリックでファイル全体を表示します。</translation>
    </message>
</context>
<context>
    <name>SpeedMenu</name>
    <message>
        <source>S&amp;peed</source>
        <translation>速度(&amp;P)</translation>
    </message>
    <message>
        <source>&amp;Slower</source>
        <translation>遅く(&amp;S)</translation>
    </message>
    <message>
        <source>&amp;Faster</source>
        <translation>速く(&amp;F)</translation>
    </message>
    <message>
        <source>&amp;Normal speed</source>
        <translation>標準の速度(&amp;N)</translation>
    </message>
</context>
<context>
    <name>TaskProgress</name>
    <message>
        <source>Cancel</source>
        <translation>キャンセル</translation>
    </message>
</context>
<context>
    <name>ThemeMenu</name>
    <message>
        <source>&amp;Theme</source>
        <translation>テーマ(&amp;T)</translation>
    </message>
</context>
<context>
    <name>ZoomBar</name>
    <message>
        <source>Zoom</source>
        <translation>ズーム</translation>
    </message>
</context>
<context>
    <name>main</name>
    <message>
        <source>Not a range of seconds such as 1.5-3: %1</source>
        <translation>1.5-3 のような秒の範囲ではありません: %1</translation>
    </message>
    <message>
        <source>Shows and plays an audio file.</source>
        <translation>オーディオファイルを表示し、再生します。</translation>
    </message>
    <message>
        <source>Start playing at once.</source>
        <translation>すぐに再生を開始します。</translation>
    </message>
    <message>
        <source>Show this range of seconds.</source>
        <translation>この秒の範囲を表示します。</translation>
    </message>
    <message>
        <source>Select this range of seconds.</source>
        <translation>この秒の範囲を選択します。</translation>
    </message>
    <message>
        <source>Save a picture of the window once it is complete, and quit.</source>
        <translation>ウィンドウの表示が完了したら画像を保存して終了します。</translation>
    </message>
    <message>
        <source>The files to open.</source>
        <translation>開くファイル。</translation>
    </message>
</context>
</TS>
