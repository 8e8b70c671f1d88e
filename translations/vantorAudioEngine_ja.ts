<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ja_JP">
<context>
    <name>AudioPlayer</name>
    <message>
        <source>The connection to the sound server was lost for good. Start the program again to hear sound.</source>
        <translation>サウンドサーバーとの接続が完全に失われました。音を出すにはプログラムを再起動してください。</translation>
    </message>
</context>
<context>
    <name>AudioPlayerActions</name>
    <message>
        <source>Play or pause</source>
        <translation>再生／一時停止</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>停止</translation>
    </message>
    <message>
        <source>One second back</source>
        <translation>1 秒戻る</translation>
    </message>
    <message>
        <source>One second forward</source>
        <translation>1 秒進む</translation>
    </message>
    <message>
        <source>Five seconds back</source>
        <translation>5 秒戻る</translation>
    </message>
    <message>
        <source>Five seconds forward</source>
        <translation>5 秒進む</translation>
    </message>
    <message>
        <source>Go to the start</source>
        <translation>先頭へ移動</translation>
    </message>
    <message>
        <source>Go to the end</source>
        <translation>末尾へ移動</translation>
    </message>
    <message>
        <source>Loop</source>
        <translation>ループ</translation>
    </message>
    <message>
        <source>Mute</source>
        <translation>ミュート</translation>
    </message>
    <message>
        <source>Zoom in</source>
        <translation>拡大</translation>
    </message>
    <message>
        <source>Zoom out</source>
        <translation>縮小</translation>
    </message>
    <message>
        <source>Show all</source>
        <translation>全体を表示</translation>
    </message>
    <message>
        <source>Zoom to the selection</source>
        <translation>選択範囲を拡大表示</translation>
    </message>
    <message>
        <source>Start the selection at the position</source>
        <translation>選択範囲の始点を現在位置に設定</translation>
    </message>
    <message>
        <source>End the selection at the position</source>
        <translation>選択範囲の終点を現在位置に設定</translation>
    </message>
    <message>
        <source>Move the start back</source>
        <translation>始点を前へ移動</translation>
    </message>
    <message>
        <source>Move the start forward</source>
        <translation>始点を後ろへ移動</translation>
    </message>
    <message>
        <source>Move the end back</source>
        <translation>終点を前へ移動</translation>
    </message>
    <message>
        <source>Move the end forward</source>
        <translation>終点を後ろへ移動</translation>
    </message>
    <message>
        <source>Clear the selection</source>
        <translation>選択を解除</translation>
    </message>
</context>
<context>
    <name>TimeScale</name>
    <message>
        <source>hr</source>
        <translation>時間</translation>
    </message>
    <message>
        <source>min</source>
        <translation>分</translation>
    </message>
    <message>
        <source>sec</source>
        <translation>秒</translation>
    </message>
    <message>
        <source>msec</source>
        <translation>ミリ秒</translation>
    </message>
</context>
<context>
    <name>WavFile</name>
    <message>
        <source>The file holds no audio of a kind that can be read.</source>
        <translation>ファイルに読み取り可能な種類のオーディオが含まれていません。</translation>
    </message>
    <message>
        <source>The file could not be opened.</source>
        <translation>ファイルを開けませんでした。</translation>
    </message>
    <message>
        <source>The file ends in the middle of its header.</source>
        <translation>ファイルがヘッダーの途中で終わっています。</translation>
    </message>
    <message>
        <source>The new file could not be written.</source>
        <translation>新しいファイルを書き込めませんでした。</translation>
    </message>
    <message>
        <source>The selection could not be saved.</source>
        <translation>選択範囲を保存できませんでした。</translation>
    </message>
    <message>
        <source>The channel could not be written to a file of its own.</source>
        <translation>チャンネルを個別のファイルに書き込めませんでした。</translation>
    </message>
    <message>
        <source>The file has more than two channels, or none.</source>
        <translation>ファイルのチャンネル数が 2 を超えているか、チャンネルがありません。</translation>
    </message>
    <message>
        <source>Not a regular file</source>
        <translation>通常のファイルではありません</translation>
    </message>
    <message>
        <source>Another program has changed the file</source>
        <translation>別のプログラムがファイルを変更しました</translation>
    </message>
    <message>
        <source>Updating...</source>
        <translation>更新中...</translation>
    </message>
    <message>
        <source>Creating snippet...</source>
        <translation>抜粋を作成中...</translation>
    </message>
    <message>
        <source>Updated</source>
        <translation>更新しました</translation>
    </message>
</context>
<context>
    <name>vantoraudio::AudioEngine::AudioFileInfo</name>
    <message>
        <source>There is no file “%1”.</source>
        <translation>ファイル「%1」はありません。</translation>
    </message>
    <message>
        <source>You have no permission to read “%1”.</source>
        <translation>「%1」を読み取る権限がありません。</translation>
    </message>
    <message>
        <source>“%1” is not a file.</source>
        <translation>「%1」はファイルではありません。</translation>
    </message>
    <message>
        <source>“%1” holds no audio that can be decoded.</source>
        <translation>「%1」にデコード可能なオーディオが含まれていません。</translation>
    </message>
    <message>
        <source>“%1” is damaged: none of its audio can be decoded.</source>
        <translation>「%1」は破損しています。オーディオをまったくデコードできません。</translation>
    </message>
    <message>
        <source>“%1” could not be read to its end. Is the disk still there?</source>
        <translation>「%1」を最後まで読み取れませんでした。ディスクは接続されていますか？</translation>
    </message>
    <message>
        <source>“%1” is protected against copying.</source>
        <translation>「%1」はコピー防止で保護されています。</translation>
    </message>
    <message>
        <source>“%1” is too long for a WAV file of 4 GiB.</source>
        <translation>「%1」は 4 GiB の WAV ファイルには長すぎます。</translation>
    </message>
    <message>
        <source>The disk has too little space for the audio of “%1”.</source>
        <translation>「%1」のオーディオを保存するディスク容量が足りません。</translation>
    </message>
    <message>
        <source>The audio of “%1” cannot be given that sample rate.</source>
        <translation>「%1」のオーディオはそのサンプルレートに変換できません。</translation>
    </message>
    <message>
        <source>The audio of “%1” may not be written to that folder.</source>
        <translation>「%1」のオーディオをそのフォルダーに書き込む権限がありません。</translation>
    </message>
    <message>
        <source>The audio of “%1” could not be written.</source>
        <translation>「%1」のオーディオを書き込めませんでした。</translation>
    </message>
    <message>
        <source>Loading “%1” was cancelled.</source>
        <translation>「%1」の読み込みはキャンセルされました。</translation>
    </message>
</context>
<context>
    <name>vantoraudio::vantorAudioEngine::UI::AudioPlayerWidget</name>
    <message>
        <source>Mono</source>
        <translation>モノラル</translation>
    </message>
    <message>
        <source>Channel L + R</source>
        <translation>チャンネル L + R</translation>
    </message>
    <message>
        <source>Channel L</source>
        <translation>チャンネル L</translation>
    </message>
    <message>
        <source>Channel R</source>
        <translation>チャンネル R</translation>
    </message>
    <message>
        <source>Current position:</source>
        <translation>現在位置:</translation>
    </message>
    <message>
        <source>Total:</source>
        <translation>合計:</translation>
    </message>
    <message>
        <source>Audio file</source>
        <translation>オーディオファイル</translation>
    </message>
    <message>
        <source>Load audio file</source>
        <translation>オーディオファイルを読み込む</translation>
    </message>
    <message>
        <source>Use channel</source>
        <translation>使用チャンネル</translation>
    </message>
    <message>
        <source>Selection</source>
        <translation>選択範囲</translation>
    </message>
    <message>
        <source>Start:</source>
        <translation>開始:</translation>
    </message>
    <message>
        <source>End:</source>
        <translation>終了:</translation>
    </message>
    <message>
        <source>Use CTRL / CMD for coarse decrements</source>
        <translation>CTRL / CMD で大きく減らす</translation>
    </message>
    <message>
        <source>Use CTRL / CMD for coarse increments</source>
        <translation>CTRL / CMD で大きく増やす</translation>
    </message>
    <message>
        <source>Waveform</source>
        <translation>波形</translation>
    </message>
    <message>
        <source>Mute</source>
        <translation>ミュート</translation>
    </message>
    <message>
        <source>Volume</source>
        <translation>音量</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>停止</translation>
    </message>
    <message>
        <source>Play</source>
        <translation>再生</translation>
    </message>
    <message>
        <source>Loop</source>
        <translation>ループ</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>設定</translation>
    </message>
    <message>
        <source>Current position</source>
        <translation>現在位置</translation>
    </message>
    <message>
        <source>Total duration</source>
        <translation>合計時間</translation>
    </message>
    <message>
        <source>Channel</source>
        <translation>チャンネル</translation>
    </message>
    <message>
        <source>Start of the selection</source>
        <translation>選択範囲の始点</translation>
    </message>
    <message>
        <source>Start earlier</source>
        <translation>始点を早める</translation>
    </message>
    <message>
        <source>Start later</source>
        <translation>始点を遅らせる</translation>
    </message>
    <message>
        <source>End of the selection</source>
        <translation>選択範囲の終点</translation>
    </message>
    <message>
        <source>End earlier</source>
        <translation>終点を早める</translation>
    </message>
    <message>
        <source>End later</source>
        <translation>終点を遅らせる</translation>
    </message>
    <message>
        <source>Loading...</source>
        <translation>読み込み中...</translation>
    </message>
    <message>
        <source>Audio files</source>
        <translation>オーディオファイル</translation>
    </message>
    <message>
        <source>All files</source>
        <translation>すべてのファイル</translation>
    </message>
</context>
<context>
    <name>vantoraudio::vantorAudioEngine::UI::BGFXWaveformWidget</name>
    <message>
        <source>%1 of %2</source>
        <translation>%1 / %2</translation>
    </message>
    <message>
        <source>Nothing is selected.</source>
        <translation>何も選択されていません。</translation>
    </message>
    <message>
        <source>Selected from %1 to %2.</source>
        <translation>%1 から %2 まで選択されています。</translation>
    </message>
</context>
</TS>
