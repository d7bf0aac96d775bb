SELECT zone_id FROM zones;
