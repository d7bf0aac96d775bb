SELECT t1.zone_id, t2.max_height FROM parcels AS t1 LEFT JOIN zones AS t2 ON t1.zone_id = t2.zone_id WHERE t1.city_name = 'north'
SELECT t1.bldg_id, t2.owner_id FROM buildings AS t1 JOIN parcels AS t2 ON t1.parcel_id = t2.parcel_id WHERE t1.bldg_id IS NOT NULL
SELECT t1.speed_lim, t2.district_nm FROM roads AS t1 JOIN districts AS t2 ON t1.district_id = t2.district_id
INSERT INTO buildings (bldg_id, parcel_id, height_m, bldg_kind) VALUES (2284, 1785, 3511, 'north')
SELECT zone_id + 7, parcel_id, assessed_val FROM parcels
SELECT road_id, max(road_id) AS a0 FROM roads GROUP BY road_id HAVING count(*) > 34
SELECT abs(speed_lim) FROM roads WHERE road_id < 3828 LIMIT 114 OFFSET 79
SELECT t1.bldg_id, t2.city_name FROM buildings AS t1 JOIN parcels AS t2 ON t1.parcel_id = t2.parcel_id
SELECT parcel_id, zone_id AS c1 FROM parcels
SELECT zone_id, max(district_id) AS a0 FROM zones GROUP BY zone_id
SELECT t1.area_sqm, t2.zone_code FROM parcels AS t1 JOIN zones AS t2 ON t1.zone_id = t2.zone_id
SELECT t1.district_id, t2.district_nm FROM roads AS t1 JOIN districts AS t2 ON t1.district_id = t2.district_id
SELECT DISTINCT * FROM buildings
SELECT owner_id + 8 AS c0, owner_id FROM owners WHERE since_yr IS NULL
SELECT t1.parcel_id, t2.city_name FROM parcels AS t1 JOIN owners AS t2 ON t1.owner_id = t2.owner_id WHERE t1.city_name < 'it''s'
SELECT t1.speed_lim, t2.pop_total FROM roads AS t1 JOIN districts AS t2 ON t1.district_id = t2.district_id
SELECT coalesce(zone_id) FROM zones WHERE max_height BETWEEN 1892 AND 1980
SELECT road_id + 3, coalesce(district_id), CAST(speed_lim AS integer) FROM roads ORDER BY speed_lim ASC LIMIT 356 OFFSET 58
INSERT INTO zones (zone_id, zone_code) VALUES (4925, 'pending')
SELECT t1.area_sqm, t2.city_name FROM parcels AS t1 JOIN owners AS t2 ON t1.owner_id = t2.owner_id
SELECT CAST(road_id AS integer), CASE WHEN district_id IS NOT NULL THEN 'north' ELSE 'it''s' END AS c1 FROM roads
SELECT t1.area_sqm, t2.district_id FROM parcels AS t1 JOIN zones AS t2 ON t1.zone_id = t2.zone_id WHERE t1.owner_id >= 2425
SELECT CAST(since_yr AS integer) AS c0 FROM owners LIMIT 380
SELECT abs(pop_total) AS c0, district_nm FROM districts WHERE district_nm <> 'it''s' LIMIT 60 UNION ALL SELECT pop_total AS c0, district_id AS c1, district_id FROM districts WHERE pop_total >= 19 ORDER BY pop_total ASC
SELECT parcel_id * 1, assessed_val FROM parcels
SELECT owner_id, CASE WHEN city_name IN ('east') THEN 'river' ELSE 'a;b' END, coalesce(owner_id) FROM owners WHERE (owner_id <> 4154 AND since_yr IN (3948)) ORDER BY city_name ASC
SELECT t1.land_use, t2.city_name FROM parcels AS t1 LEFT JOIN owners AS t2 ON t1.owner_id = t2.owner_id WHERE (t1.assessed_val BETWEEN 842 AND 1475 AND (t1.land_use IS NULL AND t1.assessed_val <= 935)) UNION SELECT district_nm, district_nm, CASE WHEN district_id <> 3658 THEN 'north' ELSE 'pending' END FROM districts WHERE pop_total BETWEEN 1062 AND 1359 LIMIT 311
SELECT parcel_id, parcel_id FROM buildings ORDER BY parcel_id DESC LIMIT 401
SELECT height_m, count(*) AS a0 FROM buildings GROUP BY height_m
SELECT zone_id, count(*) AS a0 FROM parcels GROUP BY zone_id
SELECT CAST(zone_id AS integer), zone_code FROM zones WHERE (zone_id >= 2318 OR zone_code = 'east')
SELECT CAST(district_id AS integer) FROM roads WHERE speed_lim BETWEEN 366 AND 2422 ORDER BY road_id ASC
SELECT road_id FROM roads WHERE (district_id IN (3518, 161, 224.82, 2915) OR (road_nm IN ('north') AND road_nm <> 'hill'))
UPDATE buildings SET height_m = 3133 WHERE bldg_id IS NOT NULL
SELECT t1.parcel_id, t2.zone_id FROM buildings AS t1 LEFT JOIN parcels AS t2 ON t1.parcel_id = t2.parcel_id WHERE t1.bldg_kind IS NOT NULL UNION SELECT city_name FROM parcels WHERE zone_id IS NULL ORDER BY land_use ASC
INSERT INTO owners (owner_id, full_nm, city_name) VALUES (3660, 'a;b', 'hill')
SELECT road_id - 8 AS c0, coalesce(district_id, 0) FROM roads WHERE ((district_id BETWEEN 119 AND 1376 AND road_id IS NOT NULL) AND (road_nm < 'hill' OR road_nm LIKE '%nor%')) ORDER BY road_id DESC LIMIT 367 OFFSET 76
DELETE FROM roads WHERE (road_nm <> 'east' OR road_nm LIKE '%pen%')
SELECT CASE WHEN district_id BETWEEN 2026 AND 2391 THEN 'east' ELSE 'north' END, CAST(max_height AS integer) AS c1 FROM zones WHERE zone_code LIKE '%it%' ORDER BY zone_id DESC
SELECT t1.speed_lim, t2.district_nm FROM roads AS t1 JOIN districts AS t2 ON t1.district_id = t2.district_id WHERE t1.district_id IN (2978, 777)
SELECT t1.parcel_id, t2.since_yr FROM parcels AS t1 JOIN owners AS t2 ON t1.owner_id = t2.owner_id
SELECT t1.bldg_kind, t2.area_sqm FROM buildings AS t1 LEFT JOIN parcels AS t2 ON t1.parcel_id = t2.parcel_id WHERE t1.bldg_id IS NULL
SELECT coalesce(road_id), district_id FROM roads WHERE district_id IN (3841, 4932)
SELECT district_nm, abs(district_id) AS c1 FROM districts WHERE pop_total IS NOT NULL
SELECT abs(max_height, 0) AS c0, CASE WHEN max_height IS NOT NULL THEN 'pending' ELSE 'north' END AS c1 FROM zones WHERE district_id IN (3229, 3796, 4808) UNION SELECT district_id + 7, CASE WHEN district_nm >= 'a;b' THEN 'north' ELSE 'hill' END, district_nm FROM districts WHERE district_id >= 611.5
SELECT district_id, road_id, road_id + 8 AS c2 FROM roads WHERE district_id IS NOT NULL
UPDATE buildings SET bldg_kind = 'hill' WHERE bldg_kind = 'it''s'
SELECT CAST(height_m AS integer) AS c0, height_m, CASE WHEN bldg_kind < 'old town' THEN 'pending' ELSE 'river' END FROM buildings
SELECT CAST(parcel_id AS integer) AS c0 FROM parcels WHERE owner_id >= 1451
SELECT land_use, count(*) AS a0 FROM parcels GROUP BY land_use HAVING count(*) > 4
SELECT DISTINCT abs(owner_id), owner_id FROM owners UNION SELECT t1.bldg_kind, t2.owner_id FROM buildings AS t1 LEFT JOIN parcels AS t2 ON t1.parcel_id = t2.parcel_id WHERE t1.bldg_kind IN (SELECT land_use FROM parcels)
SELECT t1.city_name, t2.zone_id FROM parcels AS t1 JOIN zones AS t2 ON t1.zone_id = t2.zone_id WHERE t1.area_sqm BETWEEN 1648 AND 2747
INSERT INTO districts (district_id, district_nm) VALUES (4073, 'old town')
SELECT bldg_id, sum(bldg_id) AS a0 FROM buildings GROUP BY bldg_id
UPDATE owners SET since_yr = 839 WHERE since_yr = 418.23
SELECT abs(speed_lim) FROM roads WHERE (road_nm >= 'old town' OR speed_lim BETWEEN 2469 AND 2582) ORDER BY district_id DESC
SELECT height_m AS c0, parcel_id, parcel_id AS c2 FROM buildings WHERE bldg_id <> 2263 ORDER BY parcel_id DESC
SELECT district_id, max(max_height) AS a0 FROM zones GROUP BY district_id
SELECT t1.city_name, t2.zone_id FROM parcels AS t1 JOIN zones AS t2 ON t1.zone_id = t2.zone_id WHERE t1.zone_id IN (645.12, 3798, 4391, 1047)
INSERT INTO roads (road_id, road_nm) VALUES (29.38, 'old town')
SELECT abs(bldg_id) AS c0, parcel_id, height_m FROM buildings
SELECT t1.parcel_id, t2.land_use FROM buildings AS t1 LEFT JOIN parcels AS t2 ON t1.parcel_id = t2.parcel_id WHERE t1.parcel_id = 108
SELECT assessed_val AS c0, land_use AS c1 FROM parcels
SELECT pop_total, CASE WHEN district_nm LIKE '%pen%' THEN 'it''s' ELSE 'hill' END FROM districts WHERE district_id BETWEEN 1334 AND 2701
SELECT bldg_id / 8 AS c0, bldg_id AS c1 FROM buildings
SELECT DISTINCT CASE WHEN road_id BETWEEN 1172 AND 1214 THEN 'a;b' ELSE 'old town' END, CAST(road_id AS integer) AS c1 FROM roads WHERE (road_nm = 'it''s' AND road_nm >= 'old town')
SELECT * FROM roads ORDER BY road_id ASC LIMIT 308
INSERT INTO buildings (bldg_id, parcel_id, height_m, bldg_kind) VALUES (3104, 2924, 2939, 'east')
SELECT * FROM owners
SELECT full_nm AS c0 FROM owners WHERE full_nm LIKE '%a;b%' ORDER BY city_name DESC LIMIT 371
SELECT * FROM buildings WHERE bldg_kind IN (SELECT zone_code FROM zones) ORDER BY bldg_kind DESC UNION ALL SELECT t1.parcel_id, t2.since_yr FROM parcels AS t1 JOIN owners AS t2 ON t1.owner_id = t2.owner_id WHERE t1.area_sqm BETWEEN 11 AND 1168
INSERT INTO owners (owner_id, full_nm) VALUES (3171, 'a;b')
SELECT * FROM districts WHERE district_id BETWEEN 949 AND 2879 ORDER BY pop_total ASC LIMIT 482
SELECT coalesce(road_id), road_id FROM roads WHERE (road_nm <= 'pending' OR district_id IS NOT NULL) ORDER BY speed_lim ASC
DELETE FROM parcels WHERE area_sqm IN (SELECT bldg_id FROM buildings)
UPDATE owners SET owner_id = 1284 WHERE since_yr BETWEEN 2223 AND 2456
SELECT max_height AS c0 FROM zones WHERE max_height >= 4960 LIMIT 271 OFFSET 20
SELECT CASE WHEN speed_lim IS NOT NULL THEN 'it''s' ELSE 'old town' END, district_id, district_id - 5 FROM roads ORDER BY road_nm ASC LIMIT 358 OFFSET 89
SELECT district_id, CASE WHEN zone_code IS NOT NULL THEN 'north' ELSE 'it''s' END FROM zones
SELECT parcel_id - 7, area_sqm - 4 AS c1, land_use FROM parcels WHERE area_sqm IN (SELECT zone_id FROM zones) ORDER BY assessed_val DESC LIMIT 164 OFFSET 37
INSERT INTO zones (zone_id, zone_code, max_height, district_id) VALUES (367.45, 'east', 1354, 230.13)
SELECT t1.owner_id, t2.owner_id FROM parcels AS t1 JOIN owners AS t2 ON t1.owner_id = t2.owner_id WHERE t1.land_use IN (SELECT bldg_kind FROM buildings)
SELECT t1.road_id, t2.pop_total FROM roads AS t1 JOIN districts AS t2 ON t1.district_id = t2.district_id
SELECT city_name, since_yr FROM owners WHERE ((owner_id <= 4267 OR city_name = 'old town') AND full_nm = 'north')
SELECT abs(since_yr, 0) AS c0, since_yr AS c1, owner_id * 9 FROM owners
SELECT zone_id, max_height FROM zones
SELECT pop_total, abs(pop_total) AS c1, district_nm FROM districts WHERE pop_total = 4735
INSERT INTO parcels (parcel_id, owner_id, zone_id) VALUES (1502, 2812, 2418)
SELECT t1.land_use, t2.owner_id FROM parcels AS t1 JOIN owners AS t2 ON t1.owner_id = t2.owner_id WHERE t1.land_use IN (SELECT bldg_kind FROM buildings)
INSERT INTO parcels (parcel_id, owner_id, zone_id) VALUES (2876, 4917, 4531)
SELECT t1.district_id, t2.district_id FROM zones AS t1 LEFT JOIN districts AS t2 ON t1.district_id = t2.district_id WHERE t1.district_id <> 469
SELECT t1.district_id, t2.pop_total FROM zones AS t1 JOIN districts AS t2 ON t1.district_id = t2.district_id WHERE t1.zone_code <> 'river'
UPDATE zones SET zone_code = 'old town' WHERE district_id IN (638, 4358, 2332)
SELECT t1.land_use, t2.owner_id FROM parcels AS t1 LEFT JOIN owners AS t2 ON t1.owner_id = t2.owner_id UNION SELECT coalesce(assessed_val) FROM parcels WHERE land_use IN (SELECT road_nm FROM roads)
SELECT city_name AS c0 FROM owners WHERE since_yr <> 4780 ORDER BY city_name DESC LIMIT 314 OFFSET 23
SELECT district_nm, sum(pop_total) AS a0 FROM districts GROUP BY district_nm
INSERT INTO roads (road_id, road_nm, speed_lim) VALUES (2601, 'it''s', 695)
SELECT CAST(area_sqm AS integer) AS c0, land_use AS c1 FROM parcels ORDER BY parcel_id ASC
SELECT DISTINCT CASE WHEN parcel_id <> 23 THEN 'a;b' ELSE 'east' END AS c0, bldg_id FROM buildings WHERE bldg_id IN (SELECT district_id FROM districts)
SELECT zone_code, zone_code FROM zones WHERE district_id <= 590.78 ORDER BY max_height DESC
UPDATE buildings SET parcel_id = 2425 WHERE parcel_id IN (SELECT max_height FROM zones)
SELECT t1.bldg_id, t2.parcel_id FROM buildings AS t1 JOIN parcels AS t2 ON t1.parcel_id = t2.parcel_id
SELECT t1.district_id, t2.district_id FROM roads AS t1 LEFT JOIN districts AS t2 ON t1.district_id = t2.district_id WHERE t1.road_id BETWEEN 1741 AND 2253
SELECT t1.bldg_kind, t2.city_name FROM buildings AS t1 LEFT JOIN parcels AS t2 ON t1.parcel_id = t2.parcel_id WHERE t1.bldg_kind IN ('pending', 'hill', 'pending', 'pending')
SELECT since_yr, sum(since_yr) AS a0 FROM owners GROUP BY since_yr HAVING count(*) > 15
DELETE FROM parcels WHERE (parcel_id BETWEEN 2344 AND 2473 AND (land_use LIKE '%pen%' OR city_name = 'north'))
INSERT INTO parcels (parcel_id, owner_id, zone_id, area_sqm, land_use) VALUES (202, 2937, 2746, 393.32, 'hill')
SELECT district_nm FROM districts WHERE district_id BETWEEN 2604 AND 2682 LIMIT 157
SELECT t1.area_sqm, t2.zone_id FROM parcels AS t1 JOIN zones AS t2 ON t1.zone_id = t2.zone_id WHERE t1.area_sqm <= 2007
UPDATE buildings SET height_m = 743 WHERE parcel_id <= 2999
SELECT t1.bldg_kind, t2.land_use FROM buildings AS t1 JOIN parcels AS t2 ON t1.parcel_id = t2.parcel_id WHERE (t1.parcel_id BETWEEN 262 AND 2525 OR (t1.bldg_kind <> 'old town' AND t1.bldg_kind IS NULL))
SELECT district_id / 9 AS c0 FROM zones WHERE district_id < 1949 ORDER BY zone_id ASC
SELECT coalesce(since_yr, 0), city_name, abs(owner_id) FROM owners ORDER BY full_nm ASC
SELECT DISTINCT * FROM buildings ORDER BY parcel_id DESC
UPDATE buildings SET bldg_kind = 'it''s' WHERE parcel_id <> 744.59
SELECT t1.zone_id, t2.pop_total FROM zones AS t1 JOIN districts AS t2 ON t1.district_id = t2.district_id
SELECT bldg_kind FROM buildings WHERE height_m BETWEEN 1717 AND 2106 UNION ALL SELECT abs(owner_id) FROM owners WHERE since_yr IS NULL
DELETE FROM parcels WHERE (city_name IN ('a;b', 'hill') OR zone_id <= 3545)
SELECT t1.parcel_id, t2.owner_id FROM buildings AS t1 JOIN parcels AS t2 ON t1.parcel_id = t2.parcel_id
SELECT full_nm, count(*) AS a0 FROM owners GROUP BY full_nm
DELETE FROM buildings WHERE bldg_kind LIKE '%nor%'
SELECT parcel_id, sum(area_sqm) AS a0 FROM parcels GROUP BY parcel_id HAVING count(*) > 14
SELECT district_id, sum(district_id) AS a0 FROM districts GROUP BY district_id UNION SELECT CASE WHEN bldg_kind >= 'old town' THEN 'river' ELSE 'east' END, bldg_id / 2 AS c1 FROM buildings WHERE bldg_kind <= 'hill' ORDER BY parcel_id DESC
INSERT INTO buildings (bldg_id, parcel_id, height_m, bldg_kind) VALUES (251.97, 1908, 1465, 'it''s')
SELECT road_id, max(road_id) AS a0 FROM roads GROUP BY road_id HAVING count(*) > 13
UPDATE districts SET district_id = 485 WHERE district_nm IN (SELECT bldg_kind FROM buildings)
SELECT * FROM buildings WHERE bldg_kind >= 'old town' ORDER BY height_m DESC LIMIT 460
SELECT t1.assessed_val, t2.city_name FROM parcels AS t1 JOIN owners AS t2 ON t1.owner_id = t2.owner_id
SELECT assessed_val * 8, zone_id FROM parcels ORDER BY land_use ASC
SELECT CASE WHEN bldg_id IS NULL THEN 'hill' ELSE 'it''s' END AS c0 FROM buildings WHERE bldg_id IN (2550, 2565, 4925)
SELECT owner_id FROM owners WHERE (since_yr IS NOT NULL AND since_yr < 1605) ORDER BY owner_id ASC LIMIT 350 OFFSET 39
SELECT DISTINCT CAST(owner_id AS integer) AS c0, owner_id, since_yr AS c2 FROM owners WHERE owner_id >= 594.40
SELECT CASE WHEN city_name IS NULL THEN 'river' ELSE 'river' END, land_use, CAST(area_sqm AS integer) FROM parcels WHERE (city_name IS NULL OR assessed_val IN (4858, 754.88))
SELECT full_nm, sum(since_yr) AS a0 FROM owners GROUP BY full_nm HAVING count(*) > 49
SELECT t1.assessed_val, t2.district_id FROM parcels AS t1 LEFT JOIN zones AS t2 ON t1.zone_id = t2.zone_id WHERE t1.city_name IS NULL
INSERT INTO districts (district_id, district_nm) VALUES (1426, 'hill')
SELECT district_id, sum(speed_lim) AS a0 FROM roads GROUP BY district_id HAVING count(*) > 11
SELECT t1.assessed_val, t2.zone_id FROM parcels AS t1 JOIN zones AS t2 ON t1.zone_id = t2.zone_id
INSERT INTO districts (district_id, district_nm, pop_total) VALUES (3477, 'hill', 2450)
DELETE FROM owners WHERE owner_id = 893.80
UPDATE buildings SET bldg_id = 386 WHERE bldg_kind = 'pending'
SELECT t1.district_id, t2.district_id FROM zones AS t1 LEFT JOIN districts AS t2 ON t1.district_id = t2.district_id WHERE t1.max_height < 2541
SELECT parcel_id AS c0 FROM parcels WHERE zone_id IN (SELECT owner_id FROM owners)
SELECT t1.owner_id, t2.district_id FROM parcels AS t1 JOIN zones AS t2 ON t1.zone_id = t2.zone_id WHERE t1.owner_id IS NULL
SELECT coalesce(since_yr), CAST(since_yr AS integer) FROM owners WHERE city_name IN (SELECT zone_code FROM zones) LIMIT 58 OFFSET 74
SELECT owner_id, sum(assessed_val) AS a0 FROM parcels GROUP BY owner_id
SELECT t1.zone_id, t2.max_height FROM parcels AS t1 LEFT JOIN zones AS t2 ON t1.zone_id = t2.zone_id
SELECT max_height / 4 FROM zones WHERE district_id IS NOT NULL
SELECT abs(district_id) AS c0 FROM districts
SELECT district_id, abs(district_id, 0) AS c1, pop_total FROM districts ORDER BY district_id ASC LIMIT 87 OFFSET 83
DELETE FROM districts WHERE (pop_total <= 1013 AND pop_total IN (219.77, 4933, 4468, 1026))
UPDATE owners SET full_nm = 'pending' WHERE since_yr IN (SELECT district_id FROM roads)
SELECT road_id, road_id FROM roads
SELECT speed_lim, road_id FROM roads WHERE road_nm < 'river'
SELECT DISTINCT bldg_id + 6, abs(parcel_id, 0) AS c1, bldg_id AS c2 FROM buildings
DELETE FROM zones WHERE max_height >= 90
DELETE FROM owners WHERE full_nm <= 'east'
UPDATE owners SET full_nm = 'pending' WHERE full_nm IS NOT NULL
INSERT INTO zones (zone_id, zone_code, max_height, district_id) VALUES (1910, 'north', 4411, 433)
SELECT t1.parcel_id, t2.owner_id FROM parcels AS t1 JOIN owners AS t2 ON t1.owner_id = t2.owner_id WHERE t1.zone_id BETWEEN 76 AND 1280
SELECT t1.parcel_id, t2.land_use FROM buildings AS t1 JOIN parcels AS t2 ON t1.parcel_id = t2.parcel_id WHERE t1.height_m BETWEEN 981 AND 1693
SELECT * FROM districts WHERE (district_id BETWEEN 2106 AND 2950 OR district_id IN (3932, 4867, 4488))
SELECT t1.zone_id, t2.full_nm FROM parcels AS t1 JOIN owners AS t2 ON t1.owner_id = t2.owner_id
SELECT max_height * 5 FROM zones
SELECT full_nm, abs(since_yr) FROM owners ORDER BY city_name DESC
SELECT t1.height_m, t2.city_name FROM buildings AS t1 JOIN parcels AS t2 ON t1.parcel_id = t2.parcel_id WHERE t1.bldg_kind IS NOT NULL
SELECT district_id - 7 AS c0, district_id, CAST(district_id AS integer) FROM districts ORDER BY district_nm ASC UNION SELECT t1.area_sqm, t2.since_yr FROM parcels AS t1 JOIN owners AS t2 ON t1.owner_id = t2.owner_id
SELECT since_yr, city_name, owner_id + 9 FROM owners WHERE city_name LIKE '%it%' ORDER BY full_nm ASC
SELECT parcel_id, bldg_kind, coalesce(bldg_id, 0) AS c2 FROM buildings ORDER BY height_m ASC
SELECT city_name, sum(since_yr) AS a0 FROM owners GROUP BY city_name
DELETE FROM buildings WHERE parcel_id BETWEEN 1072 AND 1082
SELECT t1.road_nm, t2.district_nm FROM roads AS t1 LEFT JOIN districts AS t2 ON t1.district_id = t2.district_id
SELECT abs(owner_id, 0) AS c0 FROM parcels WHERE city_name < 'river' ORDER BY zone_id DESC UNION SELECT district_id, road_nm, road_nm FROM roads WHERE district_id BETWEEN 411 AND 1747 ORDER BY road_nm ASC
SELECT bldg_kind, height_m FROM buildings WHERE parcel_id <= 1933
INSERT INTO districts (district_id, district_nm, pop_total) VALUES (1766, 'a;b', 3574)
SELECT speed_lim AS c0, CASE WHEN speed_lim BETWEEN 746 AND 2518 THEN 'old town' ELSE 'hill' END, coalesce(road_id, 0) FROM roads WHERE road_nm <= 'north'
SELECT DISTINCT area_sqm AS c0 FROM parcels WHERE area_sqm BETWEEN 988 AND 2713 LIMIT 333
INSERT INTO buildings (bldg_id, parcel_id) VALUES (1545, 1022)
SELECT * FROM buildings WHERE height_m <> 3705
DELETE FROM buildings WHERE bldg_kind IN (SELECT road_nm FROM roads)
SELECT t1.owner_id, t2.city_name FROM parcels AS t1 JOIN owners AS t2 ON t1.owner_id = t2.owner_id
DELETE FROM buildings WHERE bldg_id <> 902.80
SELECT t1.zone_code, t2.district_nm FROM zones AS t1 JOIN districts AS t2 ON t1.district_id = t2.district_id WHERE t1.zone_code IN (SELECT district_nm FROM districts)
SELECT * FROM owners WHERE (owner_id BETWEEN 282 AND 2815 OR (owner_id BETWEEN 732 AND 1382 AND owner_id BETWEEN 1115 AND 1306))
INSERT INTO roads (road_id, road_nm, speed_lim, district_id) VALUES (3132, 'hill', 4734, 2125)
SELECT full_nm, max(since_yr) AS a0 FROM owners GROUP BY full_nm UNION SELECT coalesce(district_id, 0), CASE WHEN pop_total <= 3283 THEN 'old town' ELSE 'it''s' END AS c1 FROM districts WHERE district_nm <= 'hill'
SELECT zone_id AS c0 FROM zones ORDER BY zone_code ASC
INSERT INTO owners (owner_id, full_nm, city_name, since_yr) VALUES (76, 'pending', 'a;b', 4715)
UPDATE zones SET max_height = 1935 WHERE zone_id < 147.37
SELECT parcel_id, coalesce(parcel_id, 0) FROM buildings ORDER BY bldg_id ASC
SELECT t1.max_height, t2.district_id FROM zones AS t1 JOIN districts AS t2 ON t1.district_id = t2.district_id
SELECT DISTINCT CAST(district_id AS integer), max_height, district_id AS c2 FROM zones WHERE max_height BETWEEN 1673 AND 1872
SELECT city_name AS c0, since_yr * 1, CAST(owner_id AS integer) AS c2 FROM owners ORDER BY full_nm ASC
SELECT t1.area_sqm, t2.owner_id FROM parcels AS t1 JOIN owners AS t2 ON t1.owner_id = t2.owner_id WHERE t1.area_sqm IN (SELECT since_yr FROM owners)
SELECT zone_id AS c0 FROM parcels WHERE assessed_val IN (SELECT height_m FROM buildings) ORDER BY assessed_val DESC
SELECT t1.owner_id, t2.zone_id FROM parcels AS t1 JOIN zones AS t2 ON t1.zone_id = t2.zone_id WHERE t1.zone_id IS NULL
DELETE FROM buildings WHERE parcel_id <> 404
SELECT max_height FROM zones WHERE zone_id IN (4807, 2994) LIMIT 257
SELECT t1.zone_id, t2.district_nm FROM zones AS t1 JOIN districts AS t2 ON t1.district_id = t2.district_id
SELECT CASE WHEN max_height BETWEEN 940 AND 1394 THEN 'pending' ELSE 'it''s' END, abs(max_height) AS c1 FROM zones WHERE district_id BETWEEN 491 AND 1579 ORDER BY zone_id ASC
SELECT CASE WHEN since_yr IS NULL THEN 'north' ELSE 'pending' END AS c0, CASE WHEN since_yr IS NULL THEN 'north' ELSE 'old town' END FROM owners WHERE full_nm >= 'pending'
SELECT CASE WHEN owner_id < 4092 THEN 'river' ELSE 'hill' END, owner_id, CASE WHEN owner_id IN (638) THEN 'north' ELSE 'hill' END FROM owners WHERE owner_id <= 1298
SELECT district_nm FROM districts WHERE (district_nm IN ('pending') OR district_nm IN ('hill'))
UPDATE parcels SET owner_id = 4796 WHERE (assessed_val <> 1870 OR zone_id < 932.9)
SELECT owner_id, sum(owner_id) AS a0 FROM owners GROUP BY owner_id
SELECT district_id, max(district_id) AS a0 FROM districts GROUP BY district_id
SELECT * FROM owners WHERE since_yr = 3622 LIMIT 430 OFFSET 17
SELECT bldg_kind, max(height_m) AS a0 FROM buildings GROUP BY bldg_kind HAVING count(*) > 1
SELECT * FROM buildings
SELECT road_id, count(*) AS a0 FROM roads GROUP BY road_id HAVING count(*) > 17
SELECT t1.parcel_id, t2.max_height FROM parcels AS t1 LEFT JOIN zones AS t2 ON t1.zone_id = t2.zone_id WHERE t1.city_name IN ('it''s', 'river', 'it''s')
SELECT t1.road_id, t2.district_id FROM roads AS t1 JOIN districts AS t2 ON t1.district_id = t2.district_id
SELECT t1.zone_id, t2.pop_total FROM zones AS t1 LEFT JOIN districts AS t2 ON t1.district_id = t2.district_id WHERE t1.district_id BETWEEN 364 AND 843
SELECT district_id, district_id AS c1, pop_total / 7 FROM districts ORDER BY pop_total DESC
SELECT * FROM zones WHERE district_id BETWEEN 2008 AND 2426 LIMIT 481
SELECT district_nm FROM districts WHERE district_nm = 'river'
SELECT * FROM zones WHERE (zone_code LIKE '%old%' OR zone_id <= 1881) LIMIT 202
SELECT city_name, count(*) AS a0 FROM owners GROUP BY city_name
SELECT t1.height_m, t2.land_use FROM buildings AS t1 JOIN parcels AS t2 ON t1.parcel_id = t2.parcel_id WHERE t1.height_m BETWEEN 459 AND 2349
SELECT CAST(parcel_id AS integer), bldg_kind FROM buildings WHERE parcel_id BETWEEN 1457 AND 2235
SELECT DISTINCT CAST(road_id AS integer), CASE WHEN road_nm IS NULL THEN 'hill' ELSE 'old town' END FROM roads WHERE (road_nm LIKE '%hil%' OR road_nm >= 'it''s') LIMIT 399 UNION SELECT district_id - 7 AS c0 FROM zones WHERE zone_id IS NOT NULL LIMIT 175
SELECT bldg_id, count(*) AS a0 FROM buildings GROUP BY bldg_id HAVING count(*) > 5
SELECT CASE WHEN max_height <= 3667 THEN 'it''s' ELSE 'river' END AS c0 FROM zones
SELECT CASE WHEN road_id <> 431 THEN 'a;b' ELSE 'old town' END AS c0, speed_lim, speed_lim / 1 AS c2 FROM roads WHERE speed_lim IS NULL LIMIT 390
SELECT speed_lim, district_id, road_nm FROM roads WHERE speed_lim IN (SELECT speed_lim FROM roads)
SELECT max_height AS c0, zone_id * 2, zone_id AS c2 FROM zones WHERE district_id IS NULL ORDER BY zone_code DESC LIMIT 31
SELECT abs(pop_total, 0), district_id, pop_total * 9 AS c2 FROM districts WHERE pop_total >= 2289
SELECT abs(road_id) AS c0 FROM roads WHERE district_id IS NULL
SELECT t1.road_nm, t2.district_id FROM roads AS t1 JOIN districts AS t2 ON t1.district_id = t2.district_id WHERE (t1.speed_lim < 1552 AND t1.speed_lim >= 4850)
UPDATE districts SET pop_total = 183.96 WHERE district_nm >= 'old town'
UPDATE owners SET since_yr = 1788 WHERE owner_id < 3863
INSERT INTO districts (district_id, district_nm) VALUES (2584, 'it''s')
SELECT * FROM buildings WHERE parcel_id BETWEEN 203 AND 2209
SELECT zone_code, sum(max_height) AS a0 FROM zones GROUP BY zone_code
SELECT abs(area_sqm, 0), zone_id AS c1, CASE WHEN assessed_val <= 886 THEN 'river' ELSE 'it''s' END FROM parcels
SELECT zone_code, CASE WHEN zone_code IS NOT NULL THEN 'old town' ELSE 'hill' END AS c1 FROM zones WHERE district_id IN (4483, 1102)
SELECT parcel_id FROM parcels WHERE city_name < 'hill' LIMIT 67 OFFSET 14
SELECT bldg_kind AS c0 FROM buildings WHERE bldg_kind IN (SELECT city_name FROM parcels) ORDER BY bldg_kind ASC
SELECT t1.city_name, t2.district_id FROM parcels AS t1 LEFT JOIN zones AS t2 ON t1.zone_id = t2.zone_id
SELECT city_name, sum(area_sqm) AS a0 FROM parcels GROUP BY city_name HAVING count(*) > 24
UPDATE zones SET zone_id = 871 WHERE zone_id BETWEEN 1721 AND 1937
SELECT height_m AS c0, height_m, bldg_id AS c2 FROM buildings WHERE bldg_id IN (SELECT area_sqm FROM parcels) LIMIT 137
UPDATE owners SET since_yr = 1006 WHERE city_name <= 'old town'
SELECT t1.city_name, t2.zone_code FROM parcels AS t1 JOIN zones AS t2 ON t1.zone_id = t2.zone_id WHERE t1.assessed_val <= 4991
SELECT * FROM zones WHERE max_height BETWEEN 1176 AND 1247 ORDER BY zone_code DESC
SELECT CASE WHEN parcel_id <= 4366 THEN 'a;b' ELSE 'east' END, owner_id AS c1 FROM parcels WHERE city_name IS NULL
INSERT INTO owners (owner_id, full_nm) VALUES (588, 'old town')
INSERT INTO roads (road_id, road_nm, speed_lim, district_id) VALUES (45.15, 'hill', 156, 3844)
SELECT zone_code, count(*) AS a0 FROM zones GROUP BY zone_code UNION SELECT bldg_kind FROM buildings ORDER BY bldg_id ASC
SELECT owner_id * 2 AS c0 FROM parcels WHERE assessed_val IN (1209) LIMIT 362 OFFSET 21
UPDATE districts SET pop_total = 1287 WHERE ((district_nm IS NULL AND district_id <= 2765) OR district_nm <> 'east')
DELETE FROM buildings WHERE parcel_id BETWEEN 605 AND 1701
SELECT since_yr, sum(since_yr) AS a0 FROM owners GROUP BY since_yr HAVING count(*) > 43
SELECT owner_id, count(*) AS a0 FROM parcels GROUP BY owner_id HAVING count(*) > 17
SELECT abs(since_yr, 0) AS c0 FROM owners
SELECT zone_code FROM zones WHERE zone_id <> 125.99 LIMIT 88
SELECT max_height FROM zones WHERE zone_code >= 'north' ORDER BY zone_id DESC
SELECT zone_id, count(*) AS a0 FROM zones GROUP BY zone_id HAVING count(*) > 22
SELECT t1.city_name, t2.owner_id FROM parcels AS t1 JOIN owners AS t2 ON t1.owner_id = t2.owner_id WHERE t1.city_name <= 'old town'
SELECT bldg_kind, CASE WHEN bldg_id >= 2550 THEN 'a;b' ELSE 'east' END, CASE WHEN bldg_kind < 'a;b' THEN 'river' ELSE 'old town' END FROM buildings WHERE bldg_id IN (417, 1521)
SELECT parcel_id AS c0 FROM parcels WHERE assessed_val IN (SELECT area_sqm FROM parcels)
SELECT abs(district_id) AS c0, CASE WHEN pop_total <> 781.61 THEN 'river' ELSE 'river' END FROM districts
SELECT * FROM districts ORDER BY district_id DESC
INSERT INTO zones (zone_id, zone_code) VALUES (2887, 'north')
UPDATE owners SET city_name = 'pending' WHERE owner_id = 3710
SELECT t1.city_name, t2.since_yr FROM parcels AS t1 LEFT JOIN owners AS t2 ON t1.owner_id = t2.owner_id WHERE (t1.city_name >= 'it''s' OR (t1.zone_id IS NOT NULL AND t1.land_use >= 'a;b'))
SELECT t1.assessed_val, t2.district_id FROM parcels AS t1 JOIN zones AS t2 ON t1.zone_id = t2.zone_id WHERE t1.owner_id IN (1933, 36, 3350)
INSERT INTO zones (zone_id, zone_code) VALUES (4487, 'a;b')
SELECT district_id * 2 AS c0 FROM roads WHERE road_id >= 551.91 ORDER BY district_id DESC LIMIT 262 OFFSET 74
SELECT CASE WHEN land_use IS NOT NULL THEN 'old town' ELSE 'old town' END, owner_id AS c1, assessed_val AS c2 FROM parcels ORDER BY city_name DESC LIMIT 289 OFFSET 78 UNION ALL SELECT DISTINCT district_id / 9 AS c0, district_nm FROM districts WHERE district_nm IN (SELECT zone_code FROM zones) LIMIT 360
SELECT t1.district_id, t2.district_nm FROM zones AS t1 LEFT JOIN districts AS t2 ON t1.district_id = t2.district_id
UPDATE parcels SET zone_id = 3796 WHERE land_use IN (SELECT bldg_kind FROM buildings)
SELECT t1.zone_id, t2.district_id FROM zones AS t1 LEFT JOIN districts AS t2 ON t1.district_id = t2.district_id
SELECT CAST(parcel_id AS integer) AS c0, bldg_kind AS c1 FROM buildings WHERE height_m < 3280
INSERT INTO owners (owner_id, full_nm, city_name) VALUES (4760, 'east', 'old town')
INSERT INTO districts (district_id, district_nm) VALUES (689.13, 'river')
UPDATE owners SET since_yr = 362.54 WHERE owner_id BETWEEN 1480 AND 1543
UPDATE zones SET zone_id = 4348 WHERE district_id IS NOT NULL
INSERT INTO roads (road_id, road_nm, speed_lim) VALUES (50.92, 'river', 196.83)
DELETE FROM buildings WHERE bldg_id IN (1469)
INSERT INTO parcels (parcel_id, owner_id, zone_id, area_sqm, land_use) VALUES (130, 3065, 544, 3865, 'hill')
SELECT district_nm AS c0 FROM districts WHERE district_nm IN (SELECT district_nm FROM districts) ORDER BY district_nm DESC
SELECT zone_id, max(zone_id) AS a0 FROM zones GROUP BY zone_id
SELECT DISTINCT abs(district_id, 0), district_id * 6 AS c1, district_nm FROM districts WHERE district_nm <> 'hill'
UPDATE owners SET full_nm = 'pending' WHERE since_yr BETWEEN 2014 AND 2062
UPDATE districts SET district_id = 2880 WHERE district_id BETWEEN 1 AND 1927
SELECT t1.owner_id, t2.city_name FROM parcels AS t1 JOIN owners AS t2 ON t1.owner_id = t2.owner_id
SELECT * FROM zones ORDER BY max_height DESC
UPDATE buildings SET parcel_id = 848.36 WHERE height_m <= 3054
SELECT t1.zone_code, t2.district_id FROM zones AS t1 JOIN districts AS t2 ON t1.district_id = t2.district_id WHERE t1.max_height < 4569
SELECT owner_id, since_yr FROM owners WHERE owner_id BETWEEN 1130 AND 2022
SELECT DISTINCT * FROM roads WHERE ((road_id < 4739 AND road_nm <> 'pending') OR speed_lim <> 2168)
SELECT pop_total, abs(pop_total, 0), district_id * 2 FROM districts
SELECT t1.area_sqm, t2.zone_code FROM parcels AS t1 LEFT JOIN zones AS t2 ON t1.zone_id = t2.zone_id WHERE (t1.city_name IS NOT NULL OR t1.land_use IS NOT NULL)
UPDATE zones SET max_height = 389.19 WHERE zone_id IS NULL
SELECT land_use, max(zone_id) AS a0 FROM parcels GROUP BY land_use HAVING count(*) > 49
UPDATE districts SET district_nm = 'a;b' WHERE pop_total <= 33.65
UPDATE roads SET speed_lim = 4950 WHERE road_nm LIKE '%riv%'
SELECT t1.bldg_kind, t2.area_sqm FROM buildings AS t1 JOIN parcels AS t2 ON t1.parcel_id = t2.parcel_id
SELECT zone_id, max(zone_id) AS a0 FROM zones GROUP BY zone_id
UPDATE roads SET road_id = 1075 WHERE road_nm = 'old town'
SELECT CASE WHEN since_yr <= 969 THEN 'pending' ELSE 'hill' END AS c0, CAST(owner_id AS integer) FROM owners WHERE (city_name < 'river' OR since_yr BETWEEN 787 AND 1514) ORDER BY city_name DESC
SELECT t1.zone_id, t2.district_id FROM zones AS t1 LEFT JOIN districts AS t2 ON t1.district_id = t2.district_id WHERE t1.zone_code IS NOT NULL UNION ALL SELECT t1.city_name, t2.city_name FROM parcels AS t1 LEFT JOIN owners AS t2 ON t1.owner_id = t2.owner_id
SELECT t1.area_sqm, t2.zone_id FROM parcels AS t1 JOIN zones AS t2 ON t1.zone_id = t2.zone_id
SELECT t1.parcel_id, t2.district_id FROM parcels AS t1 JOIN zones AS t2 ON t1.zone_id = t2.zone_id
INSERT INTO owners (owner_id, full_nm, city_name) VALUES (4582, 'it''s', 'river')
SELECT height_m, count(*) AS a0 FROM buildings GROUP BY height_m
SELECT * FROM parcels WHERE owner_id <> 923
SELECT t1.zone_id, t2.owner_id FROM parcels AS t1 JOIN owners AS t2 ON t1.owner_id = t2.owner_id WHERE t1.owner_id <> 3444
SELECT height_m, sum(parcel_id) AS a0 FROM buildings GROUP BY height_m
SELECT * FROM zones WHERE district_id BETWEEN 941 AND 1519
SELECT t1.land_use, t2.max_height FROM parcels AS t1 LEFT JOIN zones AS t2 ON t1.zone_id = t2.zone_id WHERE t1.assessed_val IS NOT NULL
SELECT bldg_kind AS c0, coalesce(bldg_id, 0) AS c1 FROM buildings WHERE parcel_id <= 784 LIMIT 327 OFFSET 94
SELECT t1.area_sqm, t2.city_name FROM parcels AS t1 JOIN owners AS t2 ON t1.owner_id = t2.owner_id
SELECT road_nm, CAST(road_id AS integer), speed_lim FROM roads WHERE road_id <= 4001
SELECT t1.area_sqm, t2.zone_id FROM parcels AS t1 LEFT JOIN zones AS t2 ON t1.zone_id = t2.zone_id
SELECT coalesce(district_id, 0) AS c0, abs(speed_lim), abs(road_id) FROM roads WHERE district_id IN (4124, 1757, 416) ORDER BY district_id ASC
SELECT * FROM owners WHERE owner_id BETWEEN 1408 AND 1509 ORDER BY full_nm ASC
SELECT t1.height_m, t2.zone_id FROM buildings AS t1 LEFT JOIN parcels AS t2 ON t1.parcel_id = t2.parcel_id WHERE t1.bldg_id IN (SELECT max_height FROM zones)
SELECT district_nm, pop_total AS c1, coalesce(district_id, 0) AS c2 FROM districts WHERE pop_total = 2484
SELECT height_m, bldg_id, height_m FROM buildings
INSERT INTO owners (owner_id, full_nm, city_name) VALUES (752, 'north', 'hill')
SELECT speed_lim, district_id, CAST(speed_lim AS integer) AS c2 FROM roads LIMIT 499 OFFSET 30 UNION SELECT owner_id - 8 AS c0, assessed_val + 6, zone_id AS c2 FROM parcels
SELECT t1.city_name, t2.owner_id FROM parcels AS t1 JOIN owners AS t2 ON t1.owner_id = t2.owner_id WHERE (t1.city_name < 'river' AND t1.zone_id = 1200)
SELECT CAST(since_yr AS integer), owner_id FROM owners ORDER BY since_yr ASC
SELECT t1.parcel_id, t2.max_height FROM parcels AS t1 JOIN zones AS t2 ON t1.zone_id = t2.zone_id WHERE t1.assessed_val <> 2024
INSERT INTO districts (district_id, district_nm, pop_total) VALUES (845, 'hill', 3362)
SELECT DISTINCT pop_total - 9 AS c0, district_nm FROM districts WHERE district_id BETWEEN 1896 AND 2372
SELECT abs(district_id, 0) AS c0, abs(district_id, 0), zone_code FROM zones WHERE zone_id IN (SELECT owner_id FROM owners) ORDER BY district_id DESC
UPDATE districts SET pop_total = 4361 WHERE district_id BETWEEN 463 AND 1803
SELECT height_m - 3 FROM buildings WHERE bldg_id IS NULL
SELECT district_id * 4, district_id FROM districts WHERE pop_total >= 644.28 ORDER BY district_nm DESC LIMIT 457 OFFSET 49
UPDATE owners SET city_name = 'pending' WHERE (since_yr <> 415.1 AND owner_id IN (165, 4239, 357.24))
UPDATE buildings SET bldg_kind = 'north' WHERE (bldg_kind <= 'old town' OR (bldg_kind < 'river' AND parcel_id <> 2339))
SELECT CASE WHEN city_name = 'old town' THEN 'north' ELSE 'hill' END, abs(owner_id) AS c1 FROM owners WHERE city_name <> 'river'
SELECT speed_lim, max(road_id) AS a0 FROM roads GROUP BY speed_lim
SELECT t1.area_sqm, t2.full_nm FROM parcels AS t1 JOIN owners AS t2 ON t1.owner_id = t2.owner_id
UPDATE zones SET zone_id = 84.67 WHERE zone_code IS NOT NULL
SELECT * FROM districts WHERE pop_total <= 1713
SELECT coalesce(district_id), zone_id, abs(max_height, 0) FROM zones WHERE (zone_code IS NOT NULL OR (zone_id = 3882 AND zone_code IS NULL))
SELECT t1.road_id, t2.district_id FROM roads AS t1 LEFT JOIN districts AS t2 ON t1.district_id = t2.district_id
SELECT since_yr, city_name FROM owners WHERE (city_name <= 'a;b' AND (full_nm IS NOT NULL AND since_yr IN (3803, 4922, 309.87, 97)))
SELECT t1.assessed_val, t2.city_name FROM parcels AS t1 JOIN owners AS t2 ON t1.owner_id = t2.owner_id WHERE t1.land_use LIKE '%pen%'
INSERT INTO owners (owner_id, full_nm) VALUES (2678, 'old town')
SELECT t1.land_use, t2.max_height FROM parcels AS t1 LEFT JOIN zones AS t2 ON t1.zone_id = t2.zone_id WHERE t1.city_name IN (SELECT city_name FROM parcels)
SELECT abs(district_id), abs(district_id) AS c1 FROM districts WHERE district_id <= 924
SELECT t1.zone_code, t2.pop_total FROM zones AS t1 LEFT JOIN districts AS t2 ON t1.district_id = t2.district_id WHERE ((t1.max_height < 4243 AND t1.max_height <= 596.35) OR (t1.district_id BETWEEN 726 AND 734 AND t1.zone_code LIKE '%a;b%'))
SELECT CASE WHEN district_id IN (1543, 1207) THEN 'old town' ELSE 'old town' END, district_id * 9, max_height FROM zones
SELECT t1.bldg_id, t2.owner_id FROM buildings AS t1 LEFT JOIN parcels AS t2 ON t1.parcel_id = t2.parcel_id WHERE t1.bldg_kind LIKE '%nor%'
SELECT t1.max_height, t2.district_nm FROM zones AS t1 LEFT JOIN districts AS t2 ON t1.district_id = t2.district_id WHERE t1.district_id IN (1258, 4251, 232, 4409)
SELECT zone_code, count(*) AS a0 FROM zones GROUP BY zone_code HAVING count(*) > 23
SELECT abs(district_id) AS c0 FROM zones WHERE zone_id <> 3574 UNION SELECT CASE WHEN zone_code <> 'a;b' THEN 'north' ELSE 'hill' END, zone_code FROM zones
SELECT road_nm AS c0, abs(speed_lim) FROM roads WHERE district_id IN (996, 4479)
SELECT DISTINCT * FROM buildings
SELECT coalesce(since_yr, 0), full_nm AS c1, city_name FROM owners WHERE owner_id IN (SELECT owner_id FROM parcels)
SELECT zone_code, max(zone_id) AS a0 FROM zones GROUP BY zone_code HAVING count(*) > 42
INSERT INTO owners (owner_id, full_nm, city_name, since_yr) VALUES (2677, 'east', 'east', 583)
SELECT t1.bldg_id, t2.owner_id FROM buildings AS t1 LEFT JOIN parcels AS t2 ON t1.parcel_id = t2.parcel_id
SELECT road_id / 4, district_id * 9 FROM roads WHERE district_id >= 2949 ORDER BY road_nm DESC
SELECT t1.zone_code, t2.pop_total FROM zones AS t1 JOIN districts AS t2 ON t1.district_id = t2.district_id WHERE t1.zone_id = 168.59 UNION ALL SELECT zone_id, CAST(parcel_id AS integer) AS c1, coalesce(zone_id, 0) FROM parcels WHERE (assessed_val = 3650 AND owner_id < 2946)
SELECT t1.owner_id, t2.full_nm FROM parcels AS t1 JOIN owners AS t2 ON t1.owner_id = t2.owner_id
DELETE FROM parcels WHERE ((owner_id IN (1429, 1829, 865.17, 430.89) OR parcel_id >= 279) AND parcel_id IS NULL)
SELECT DISTINCT CASE WHEN bldg_id BETWEEN 1996 AND 2711 THEN 'river' ELSE 'east' END AS c0, CASE WHEN bldg_kind LIKE '%riv%' THEN 'old town' ELSE 'east' END FROM buildings ORDER BY bldg_kind DESC
SELECT owner_id, sum(assessed_val) AS a0 FROM parcels GROUP BY owner_id
SELECT zone_id, max(zone_id) AS a0 FROM parcels GROUP BY zone_id HAVING count(*) > 15
SELECT parcel_id, CASE WHEN parcel_id < 1084 THEN 'north' ELSE 'north' END FROM parcels WHERE owner_id BETWEEN 733 AND 867 ORDER BY city_name DESC
UPDATE zones SET zone_code = 'river' WHERE zone_id <> 285
SELECT t1.area_sqm, t2.max_height FROM parcels AS t1 LEFT JOIN zones AS t2 ON t1.zone_id = t2.zone_id WHERE t1.assessed_val < 1891
SELECT DISTINCT full_nm AS c0, since_yr FROM owners WHERE city_name IN (SELECT bldg_kind FROM buildings) ORDER BY owner_id ASC
INSERT INTO owners (owner_id, full_nm, city_name) VALUES (4200, 'it''s', 'it''s')
SELECT max_height, max_height, abs(max_height, 0) FROM zones WHERE max_height >= 790
SELECT district_id AS c0, CAST(district_id AS integer) FROM roads WHERE road_nm <= 'river'
SELECT coalesce(max_height), zone_code, coalesce(district_id, 0) FROM zones WHERE zone_id BETWEEN 121 AND 670
SELECT pop_total / 2, district_nm FROM districts LIMIT 435
SELECT bldg_kind, sum(bldg_id) AS a0 FROM buildings GROUP BY bldg_kind HAVING count(*) > 16
SELECT t1.area_sqm, t2.city_name FROM parcels AS t1 JOIN owners AS t2 ON t1.owner_id = t2.owner_id
SELECT district_id, count(*) AS a0 FROM districts GROUP BY district_id
SELECT t1.zone_id, t2.district_id FROM zones AS t1 JOIN districts AS t2 ON t1.district_id = t2.district_id WHERE (t1.zone_code >= 'north' AND t1.zone_id IS NOT NULL)
SELECT coalesce(since_yr) FROM owners WHERE since_yr BETWEEN 1663 AND 2991
INSERT INTO zones (zone_id, zone_code, max_height, district_id) VALUES (3183, 'pending', 4654, 52.26)
INSERT INTO parcels (parcel_id, owner_id, zone_id, area_sqm) VALUES (915, 4297, 2058, 4901)
SELECT parcel_id FROM buildings WHERE bldg_kind = 'river'
DELETE FROM districts WHERE district_nm <= 'old town'
SELECT abs(zone_id) AS c0, coalesce(area_sqm) AS c1, CASE WHEN owner_id BETWEEN 485 AND 1610 THEN 'river' ELSE 'pending' END FROM parcels WHERE city_name <= 'a;b' UNION ALL SELECT DISTINCT * FROM roads WHERE district_id BETWEEN 7 AND 44 ORDER BY speed_lim ASC
INSERT INTO zones (zone_id, zone_code) VALUES (3866, 'it''s')
SELECT DISTINCT road_nm, road_id - 6 FROM roads WHERE road_nm IN (SELECT road_nm FROM roads)
SELECT full_nm AS c0, abs(owner_id), CAST(owner_id AS integer) FROM owners WHERE since_yr <= 832.18
SELECT bldg_id, sum(parcel_id) AS a0 FROM buildings GROUP BY bldg_id
SELECT t1.zone_id, t2.pop_total FROM zones AS t1 LEFT JOIN districts AS t2 ON t1.district_id = t2.district_id UNION ALL SELECT t1.land_use, t2.since_yr FROM parcels AS t1 LEFT JOIN owners AS t2 ON t1.owner_id = t2.owner_id WHERE t1.assessed_val < 1409
SELECT t1.height_m, t2.area_sqm FROM buildings AS t1 JOIN parcels AS t2 ON t1.parcel_id = t2.parcel_id
SELECT CASE WHEN owner_id BETWEEN 1406 AND 1533 THEN 'pending' ELSE 'pending' END, CAST(since_yr AS integer), CASE WHEN since_yr BETWEEN 1266 AND 2498 THEN 'hill' ELSE 'pending' END FROM owners WHERE since_yr IN (SELECT parcel_id FROM buildings)
SELECT DISTINCT owner_id * 9 AS c0 FROM parcels WHERE city_name LIKE '%a;b%' LIMIT 249 OFFSET 71
SELECT DISTINCT coalesce(owner_id), full_nm, owner_id + 6 AS c2 FROM owners
SELECT land_use FROM parcels
SELECT road_id, count(*) AS a0 FROM roads GROUP BY road_id
SELECT * FROM zones WHERE zone_code IS NULL ORDER BY zone_id ASC
SELECT t1.owner_id, t2.city_name FROM parcels AS t1 LEFT JOIN owners AS t2 ON t1.owner_id = t2.owner_id
SELECT district_id, CASE WHEN district_id IN (4540, 4044, 756, 2418) THEN 'hill' ELSE 'hill' END, district_id FROM districts WHERE district_id = 2800
SELECT * FROM owners ORDER BY owner_id ASC
SELECT t1.area_sqm, t2.full_nm FROM parcels AS t1 LEFT JOIN owners AS t2 ON t1.owner_id = t2.owner_id
