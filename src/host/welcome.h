#pragma once
/// The welcome: a form beside the running machine for somebody who has never seen it, with the
/// examples as pictures, and how to begin. It comes up by itself at the first start, and from the
/// menu.
///
/// By itself it is shown once, when the program's main wants it (ShellOptions::welcomes) and the
/// command line is empty; a program that resumes has been used before.

/// Shows the form, or brings it to the front.
void ui_welcome();
/// For the start: the form is shown soon if it is to be.
void expect_welcome();
/// To be called after each frame that was shown: the first pictures of the machine come before the
/// form.
void welcome_frame_shown();
/// The answer to the form's question has been given elsewhere.
void welcome_key_mapping_changed();
/// Frees the form. To be called before the platform ends.
void end_welcome();
