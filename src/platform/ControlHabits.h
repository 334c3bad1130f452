#pragma once

class QWidget;

/// Gives the lists and numbers of a window the habits that they have in this program: a list that may be
/// typed into announces only what was chosen, a wheel that passes by changes nothing, and an arrow can select
/// the first row of a list.
void TeachHabits(QWidget& window);
