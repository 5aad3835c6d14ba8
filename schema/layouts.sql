-- Standard layouts and the anatomic groups that their slots expect. Pure data: run once on
-- fresh tables, after the table definitions, inside one transaction of the caller.
--
-- A layout is found by TCDicomId, the number that a series carries. Its canvas is counted in pixels.
-- Its slots are placed as seen from the front: the right side of the patient is on the left. Places
-- and sizes are fractions of the canvas, counted from the top left. TANumberInTemplate is the frame that
-- an image names, TASequence the order in which the frames are filled when nothing is known of the
-- images but their time: bitewings first, then the back teeth quadrant by quadrant, then the front.
-- TAProportions is height by width of the slot: 0.75 a film of 40 x 30 mm, 1.3333 the same upright.
--
-- Keys of slots are 50 times the layout and the frame. Therefore no slot has the number of a group:
-- the update of a saved slot finds its row by the number of the group, so that saving a standard
-- layout again does not change the standard slots. New slots get greater keys.

-- Anatomic groups. Type 0 is intra-oral and lists its teeth, type 1 is everything else. Numbers above
-- 1000 are reserved for groups that clients create.
INSERT INTO StandardGroupName
    (StandardNameID, Name, Comments, OrderNo, TGId, ADType, ADLaterality, ADAnaRegion, ADAnaRegionMod,
     ADPriStructure)
VALUES
    (1, 'Upper right molars', '', 10, 1, 0, 'R', 'T-11170', 'T-5100B', '16,17,18,'),
    (2, 'Upper right premolars', '', 20, 2, 0, 'R', 'T-11170', 'T-51009', '14,15,'),
    (3, 'Upper right canine and lateral incisor', '', 30, 3, 0, 'R', 'T-11170', 'T-51007', '12,13,'),
    (4, 'Upper right canine', '', 40, 4, 0, 'R', 'T-11170', 'T-51007', '13,'),
    (5, 'Upper right lateral incisor', '', 50, 5, 0, 'R', 'T-11170', 'T-51006', '12,'),
    (6, 'Upper central incisors', '', 60, 6, 0, 'B', 'T-11170', 'T-51005', '11,21,'),
    (7, 'Upper left lateral incisor', '', 70, 7, 0, 'L', 'T-11170', 'T-51006', '22,'),
    (8, 'Upper left canine', '', 80, 8, 0, 'L', 'T-11170', 'T-51007', '23,'),
    (9, 'Upper left canine and lateral incisor', '', 90, 9, 0, 'L', 'T-11170', 'T-51007', '22,23,'),
    (10, 'Upper left premolars', '', 100, 10, 0, 'L', 'T-11170', 'T-51009', '24,25,'),
    (11, 'Upper left molars', '', 110, 11, 0, 'L', 'T-11170', 'T-5100B', '26,27,28,'),
    (12, 'Right molar bitewing', '', 120, 12, 0, 'R', 'T-D1213', 'T-5100B', '16,17,46,47,'),
    (13, 'Right premolar bitewing', '', 130, 13, 0, 'R', 'T-D1213', 'T-51009', '14,15,44,45,'),
    (14, 'Left premolar bitewing', '', 140, 14, 0, 'L', 'T-D1213', 'T-51009', '24,25,34,35,'),
    (15, 'Left molar bitewing', '', 150, 15, 0, 'L', 'T-D1213', 'T-5100B', '26,27,36,37,'),
    (16, 'Right bitewing', '', 160, 16, 0, 'R', 'T-D1213', 'T-5100B', '14,15,16,17,44,45,46,47,'),
    (17, 'Left bitewing', '', 170, 17, 0, 'L', 'T-D1213', 'T-5100B', '24,25,26,27,34,35,36,37,'),
    (18, 'Lower right molars', '', 180, 18, 0, 'R', 'T-11180', 'T-5100B', '46,47,48,'),
    (19, 'Lower right premolars', '', 190, 19, 0, 'R', 'T-11180', 'T-51009', '44,45,'),
    (20, 'Lower right canine and lateral incisor', '', 200, 20, 0, 'R', 'T-11180', 'T-51007', '42,43,'),
    (21, 'Lower central incisors', '', 210, 21, 0, 'B', 'T-11180', 'T-51005', '31,41,'),
    (22, 'Lower left canine and lateral incisor', '', 220, 22, 0, 'L', 'T-11180', 'T-51007', '32,33,'),
    (23, 'Lower left premolars', '', 230, 23, 0, 'L', 'T-11180', 'T-51009', '34,35,'),
    (24, 'Lower left molars', '', 240, 24, 0, 'L', 'T-11180', 'T-5100B', '36,37,38,'),
    (25, 'Panoramic', '', 250, 25, 1, 'B', 'T-D1213', '', ''),
    (26, 'Lateral cephalogram', '', 260, 26, 1, 'L', 'T-11100', '', ''),
    (27, 'Frontal cephalogram', '', 270, 27, 1, 'B', 'T-11100', '', ''),
    (28, 'Any image', '', 280, 28, 1, '', '', '', '');

-- Templates. An image type is forced only where the choice of the layout determines the type of
-- the images: 4 panoramic, 5 cephalometric, 1 intra-oral.
INSERT INTO TemplateCard_T
    (TemplateID, TCName, TCDate, TCComments, TCFullViewWidth, TCFullViewHeight, TCMaximized, TCChecksum,
     TCDicomId, TCForcedImageType)
VALUES
    (1, 'Panoramic', '2000-01-01 00:00:00', '', 1000, 500, 0, 0, 1, 4),
    (2, 'Lateral cephalogram', '2000-01-01 00:00:00', '', 1000, 800, 0, 0, 2, 5),
    (5, 'Full mouth, 20 frames', '2000-01-01 00:00:00', '', 1000, 400, 0, 0, 5, NULL),
    (6, 'Full mouth, 18 frames', '2000-01-01 00:00:00', '', 1000, 500, 0, 0, 6, NULL),
    (7, 'Bitewings, 4 frames', '2000-01-01 00:00:00', '', 1000, 200, 0, 0, 7, 1),
    (8, 'Bitewings, 2 frames', '2000-01-01 00:00:00', '', 1000, 400, 0, 0, 8, 1),
    (9, 'Single image', '2000-01-01 00:00:00', '', 1000, 700, 0, 0, 9, NULL),
    (10, '2 to 3 images', '2000-01-01 00:00:00', '', 1000, 350, 0, 0, 10, NULL),
    (11, '4 to 5 images', '2000-01-01 00:00:00', '', 1000, 700, 0, 0, 11, NULL),
    (12, '6 to 9 images', '2000-01-01 00:00:00', '', 1000, 1000, 0, 0, 12, NULL),
    (14, 'Frontal cephalogram', '2000-01-01 00:00:00', '', 800, 1000, 0, 0, 14, 5);

-- Panoramic: one wide image.
INSERT INTO TemplateAttribute_T
    (TemplateImageId, TemplateID, TANumberInTemplate, TASequence, TATGId, TAGroupName,
     TAFullViewPosX, TAFullViewPosY, TAFullViewWidth, TAFullViewHeight, TAProportions, TARotation)
VALUES
    (51, 1, 1, 1, 25, 'Panoramic', 0.01, 0.01, 0.98, 0.98, '0.5', 0);

-- Lateral cephalogram: one image.
INSERT INTO TemplateAttribute_T
    (TemplateImageId, TemplateID, TANumberInTemplate, TASequence, TATGId, TAGroupName,
     TAFullViewPosX, TAFullViewPosY, TAFullViewWidth, TAFullViewHeight, TAProportions, TARotation)
VALUES
    (101, 2, 1, 1, 26, 'Lateral cephalogram', 0.01, 0.01, 0.98, 0.98, '0.8', 0);

-- Full mouth of 20: a row of nine upper frames, four bitewings, a row of seven lower frames. The upper
-- canines and lateral incisors have a frame each. Rows of horizontal films are close to the bite.
INSERT INTO TemplateAttribute_T
    (TemplateImageId, TemplateID, TANumberInTemplate, TASequence, TATGId, TAGroupName,
     TAFullViewPosX, TAFullViewPosY, TAFullViewWidth, TAFullViewHeight, TAProportions, TARotation)
VALUES
    (251, 5, 1, 5, 1, 'Upper right molars', 0.007, 0.12, 0.12, 0.225, '0.75', 0),
    (252, 5, 2, 6, 2, 'Upper right premolars', 0.134, 0.12, 0.12, 0.225, '0.75', 0),
    (253, 5, 3, 13, 4, 'Upper right canine', 0.261, 0.045, 0.09, 0.3, '1.3333', 0),
    (254, 5, 4, 14, 5, 'Upper right lateral incisor', 0.358, 0.045, 0.09, 0.3, '1.3333', 0),
    (255, 5, 5, 15, 6, 'Upper central incisors', 0.455, 0.045, 0.09, 0.3, '1.3333', 0),
    (256, 5, 6, 16, 7, 'Upper left lateral incisor', 0.552, 0.045, 0.09, 0.3, '1.3333', 0),
    (257, 5, 7, 17, 8, 'Upper left canine', 0.649, 0.045, 0.09, 0.3, '1.3333', 0),
    (258, 5, 8, 12, 10, 'Upper left premolars', 0.746, 0.12, 0.12, 0.225, '0.75', 0),
    (259, 5, 9, 11, 11, 'Upper left molars', 0.873, 0.12, 0.12, 0.225, '0.75', 0),
    (260, 5, 10, 1, 12, 'Right molar bitewing', 0.007, 0.3875, 0.12, 0.225, '0.75', 0),
    (261, 5, 11, 2, 13, 'Right premolar bitewing', 0.134, 0.3875, 0.12, 0.225, '0.75', 0),
    (262, 5, 12, 4, 14, 'Left premolar bitewing', 0.746, 0.3875, 0.12, 0.225, '0.75', 0),
    (263, 5, 13, 3, 15, 'Left molar bitewing', 0.873, 0.3875, 0.12, 0.225, '0.75', 0),
    (264, 5, 14, 9, 18, 'Lower right molars', 0.007, 0.655, 0.12, 0.225, '0.75', 0),
    (265, 5, 15, 10, 19, 'Lower right premolars', 0.134, 0.655, 0.12, 0.225, '0.75', 0),
    (266, 5, 16, 18, 20, 'Lower right canine and lateral incisor', 0.3095, 0.655, 0.09, 0.3, '1.3333', 0),
    (267, 5, 17, 19, 21, 'Lower central incisors', 0.455, 0.655, 0.09, 0.3, '1.3333', 0),
    (268, 5, 18, 20, 22, 'Lower left canine and lateral incisor', 0.6005, 0.655, 0.09, 0.3, '1.3333', 0),
    (269, 5, 19, 8, 23, 'Lower left premolars', 0.746, 0.655, 0.12, 0.225, '0.75', 0),
    (270, 5, 20, 7, 24, 'Lower left molars', 0.873, 0.655, 0.12, 0.225, '0.75', 0);

-- Full mouth of 18: a row of seven upper frames, four bitewings, a row of seven lower frames. Rows of
-- horizontal films are close to the bite.
INSERT INTO TemplateAttribute_T
    (TemplateImageId, TemplateID, TANumberInTemplate, TASequence, TATGId, TAGroupName,
     TAFullViewPosX, TAFullViewPosY, TAFullViewWidth, TAFullViewHeight, TAProportions, TARotation)
VALUES
    (301, 6, 1, 5, 1, 'Upper right molars', 0.0075, 0.119, 0.148, 0.222, '0.75', 0),
    (302, 6, 2, 6, 2, 'Upper right premolars', 0.1655, 0.119, 0.148, 0.222, '0.75', 0),
    (303, 6, 3, 13, 3, 'Upper right canine and lateral incisor', 0.3235, 0.045, 0.111, 0.296, '1.3333', 0),
    (304, 6, 4, 14, 6, 'Upper central incisors', 0.4445, 0.045, 0.111, 0.296, '1.3333', 0),
    (305, 6, 5, 15, 9, 'Upper left canine and lateral incisor', 0.5655, 0.045, 0.111, 0.296, '1.3333', 0),
    (306, 6, 6, 12, 10, 'Upper left premolars', 0.6865, 0.119, 0.148, 0.222, '0.75', 0),
    (307, 6, 7, 11, 11, 'Upper left molars', 0.8445, 0.119, 0.148, 0.222, '0.75', 0),
    (308, 6, 8, 1, 12, 'Right molar bitewing', 0.0075, 0.389, 0.148, 0.222, '0.75', 0),
    (309, 6, 9, 2, 13, 'Right premolar bitewing', 0.1655, 0.389, 0.148, 0.222, '0.75', 0),
    (310, 6, 10, 4, 14, 'Left premolar bitewing', 0.6865, 0.389, 0.148, 0.222, '0.75', 0),
    (311, 6, 11, 3, 15, 'Left molar bitewing', 0.8445, 0.389, 0.148, 0.222, '0.75', 0),
    (312, 6, 12, 9, 18, 'Lower right molars', 0.0075, 0.659, 0.148, 0.222, '0.75', 0),
    (313, 6, 13, 10, 19, 'Lower right premolars', 0.1655, 0.659, 0.148, 0.222, '0.75', 0),
    (314, 6, 14, 16, 20, 'Lower right canine and lateral incisor', 0.3235, 0.659, 0.111, 0.296, '1.3333', 0),
    (315, 6, 15, 17, 21, 'Lower central incisors', 0.4445, 0.659, 0.111, 0.296, '1.3333', 0),
    (316, 6, 16, 18, 22, 'Lower left canine and lateral incisor', 0.5655, 0.659, 0.111, 0.296, '1.3333', 0),
    (317, 6, 17, 8, 23, 'Lower left premolars', 0.6865, 0.659, 0.148, 0.222, '0.75', 0),
    (318, 6, 18, 7, 24, 'Lower left molars', 0.8445, 0.659, 0.148, 0.222, '0.75', 0);

-- Four bitewings in a row: right molars, right premolars, left premolars, left molars.
INSERT INTO TemplateAttribute_T
    (TemplateImageId, TemplateID, TANumberInTemplate, TASequence, TATGId, TAGroupName,
     TAFullViewPosX, TAFullViewPosY, TAFullViewWidth, TAFullViewHeight, TAProportions, TARotation)
VALUES
    (351, 7, 1, 1, 12, 'Right molar bitewing', 0.008, 0.05, 0.24, 0.9, '0.75', 0),
    (352, 7, 2, 2, 13, 'Right premolar bitewing', 0.256, 0.05, 0.24, 0.9, '0.75', 0),
    (353, 7, 3, 4, 14, 'Left premolar bitewing', 0.504, 0.05, 0.24, 0.9, '0.75', 0),
    (354, 7, 4, 3, 15, 'Left molar bitewing', 0.752, 0.05, 0.24, 0.9, '0.75', 0);

-- Two bitewings: right, left.
INSERT INTO TemplateAttribute_T
    (TemplateImageId, TemplateID, TANumberInTemplate, TASequence, TATGId, TAGroupName,
     TAFullViewPosX, TAFullViewPosY, TAFullViewWidth, TAFullViewHeight, TAProportions, TARotation)
VALUES
    (401, 8, 1, 1, 16, 'Right bitewing', 0.013, 0.05, 0.48, 0.9, '0.75', 0),
    (402, 8, 2, 2, 17, 'Left bitewing', 0.507, 0.05, 0.48, 0.9, '0.75', 0);

-- One image of any kind.
INSERT INTO TemplateAttribute_T
    (TemplateImageId, TemplateID, TANumberInTemplate, TASequence, TATGId, TAGroupName,
     TAFullViewPosX, TAFullViewPosY, TAFullViewWidth, TAFullViewHeight, TAProportions, TARotation)
VALUES
    (451, 9, 1, 1, 28, 'Any image', 0.01, 0.01, 0.98, 0.98, '0.7', 0);

-- Three frames in a row, for images of any kind.
INSERT INTO TemplateAttribute_T
    (TemplateImageId, TemplateID, TANumberInTemplate, TASequence, TATGId, TAGroupName,
     TAFullViewPosX, TAFullViewPosY, TAFullViewWidth, TAFullViewHeight, TAProportions, TARotation)
VALUES
    (501, 10, 1, 1, 28, 'Any image', 0.0085, 0.04, 0.322, 0.92, '1', 0),
    (502, 10, 2, 2, 28, 'Any image', 0.339, 0.04, 0.322, 0.92, '1', 0),
    (503, 10, 3, 3, 28, 'Any image', 0.6695, 0.04, 0.322, 0.92, '1', 0);

-- Five frames, three above two, for images of any kind.
INSERT INTO TemplateAttribute_T
    (TemplateImageId, TemplateID, TANumberInTemplate, TASequence, TATGId, TAGroupName,
     TAFullViewPosX, TAFullViewPosY, TAFullViewWidth, TAFullViewHeight, TAProportions, TARotation)
VALUES
    (551, 11, 1, 1, 28, 'Any image', 0.0085, 0.02, 0.322, 0.46, '1', 0),
    (552, 11, 2, 2, 28, 'Any image', 0.339, 0.02, 0.322, 0.46, '1', 0),
    (553, 11, 3, 3, 28, 'Any image', 0.6695, 0.02, 0.322, 0.46, '1', 0),
    (554, 11, 4, 4, 28, 'Any image', 0.17375, 0.52, 0.322, 0.46, '1', 0),
    (555, 11, 5, 5, 28, 'Any image', 0.50425, 0.52, 0.322, 0.46, '1', 0);

-- Nine frames, three by three, for images of any kind.
INSERT INTO TemplateAttribute_T
    (TemplateImageId, TemplateID, TANumberInTemplate, TASequence, TATGId, TAGroupName,
     TAFullViewPosX, TAFullViewPosY, TAFullViewWidth, TAFullViewHeight, TAProportions, TARotation)
VALUES
    (601, 12, 1, 1, 28, 'Any image', 0.0085, 0.0085, 0.322, 0.322, '1', 0),
    (602, 12, 2, 2, 28, 'Any image', 0.339, 0.0085, 0.322, 0.322, '1', 0),
    (603, 12, 3, 3, 28, 'Any image', 0.6695, 0.0085, 0.322, 0.322, '1', 0),
    (604, 12, 4, 4, 28, 'Any image', 0.0085, 0.339, 0.322, 0.322, '1', 0),
    (605, 12, 5, 5, 28, 'Any image', 0.339, 0.339, 0.322, 0.322, '1', 0),
    (606, 12, 6, 6, 28, 'Any image', 0.6695, 0.339, 0.322, 0.322, '1', 0),
    (607, 12, 7, 7, 28, 'Any image', 0.0085, 0.6695, 0.322, 0.322, '1', 0),
    (608, 12, 8, 8, 28, 'Any image', 0.339, 0.6695, 0.322, 0.322, '1', 0),
    (609, 12, 9, 9, 28, 'Any image', 0.6695, 0.6695, 0.322, 0.322, '1', 0);

-- Frontal cephalogram: one image.
INSERT INTO TemplateAttribute_T
    (TemplateImageId, TemplateID, TANumberInTemplate, TASequence, TATGId, TAGroupName,
     TAFullViewPosX, TAFullViewPosY, TAFullViewWidth, TAFullViewHeight, TAProportions, TARotation)
VALUES
    (701, 14, 1, 1, 27, 'Frontal cephalogram', 0.01, 0.01, 0.98, 0.98, '1.25', 0);
