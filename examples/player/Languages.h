#pragma once

/** Shows all texts in the language of the system, as far as there are translations. Call it once, before the first
 *  window is made; the application must exist. */
void InstallTranslations();
